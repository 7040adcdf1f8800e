#include "fcp/validation/DocumentRules.h"

#include <array>

namespace DocumentRules {

// The notation is explained in the header. Where versions differ, what was allowed last is listed, with the version
// that brought it or dropped it.

namespace {

constexpr std::array table{
    Element{"fcpxml",
            "import-options? resources? "
            "library|event|clip|audition|mc-clip|ref-clip|sync-clip|asset-clip|collection-folder|keyword-collection|"
            "smart-collection|project*",
            "version"},
    Element{"import-options", "option*", ""},
    Element{"option", "", "key! value!"},
    Element{"library", "event|smart-collection*", "location colorProcessing=standard|wide|wide-hdr"},
    Element{"event",
            "clip|audition|mc-clip|ref-clip|sync-clip|asset-clip|collection-folder|keyword-collection|smart-collection|"
            "project*",
            "name uid"},
    Element{"project", "sequence", "name uid id# modDate"},
    Element{"resources", "asset|effect|format|media|locator*", ""},
    Element{"media", "multicam|sequence?", "id#! name uid projectRef& modDate"},
    Element{
        "format", "",
        "id#! name frameDuration fieldOrder width height paspH paspV colorSpace projection stereoscopic heroEye@13"},
    Element{"asset", "bookmark<9? media-rep+ metadata?",
            "id#! name uid start duration hasVideo format& hasAudio videoSources@9 audioSources audioChannels "
            "audioRate customLUTOverride colorSpaceOverride projectionOverride stereoscopicOverride auxVideoFlags@10 "
            "heroEyeOverride@13 src<9!"},
    Element{"media-rep@9", "bookmark?", "kind=original-media|proxy-media sig src! suggestedFilename"},
    Element{"metadata", "md*", ""},
    Element{"md", "array?",
            "key! value editable=0|1 type=string|boolean|integer|float|date|timecode displayName description source"},
    Element{"effect", "", "id#! name uid! src"},
    Element{"locator@10", "bookmark?", "id#! url!"},
    Element{"fadeIn", "", "type=linear|easeIn|easeOut|easeInOut duration!"},
    Element{"fadeOut", "", "type=linear|easeIn|easeOut|easeInOut duration!"},
    Element{"keyframeAnimation", "keyframe*", ""},
    Element{"keyframe", "", "time! value! auxValue@11 interp=linear|ease|easeIn|easeOut curve=linear|smooth"},
    Element{"mute", "fadeIn? fadeOut?", "start duration"},
    Element{"param", "fadeIn? fadeOut? keyframeAnimation? param*", "name! key value auxValue@11 enabled=0|1"},
    Element{"data", "#PCDATA", "key"},
    Element{"crop-rect", "param*", "left top right bottom"},
    Element{"trim-rect", "param*", "left top right bottom"},
    Element{"pan-rect", "", "left top right bottom"},
    Element{"adjust-crop", "crop-rect? trim-rect? pan-rect*", "mode=trim|crop|pan! enabled=0|1"},
    Element{"adjust-corners", "param*", "enabled=0|1 botLeft topLeft topRight botRight"},
    Element{"adjust-conform", "", "type=fit|fill|none"},
    Element{"adjust-transform", "param*", "enabled=0|1 position scale rotation anchor tracking@10&"},
    Element{"adjust-blend", "param* reserved?", "amount mode"},
    Element{"adjust-stabilization", "param*", "enabled@10=0|1 type=automatic|inertiaCam|smoothCam|alignment-360"},
    Element{"adjust-rollingShutter", "", "enabled@10=0|1 amount=none|low|medium|high|extraHigh"},
    Element{"adjust-360-transform", "param*",
            "enabled=0|1 coordinates=spherical|cartesian! latitude longitude distance xPosition yPosition zPosition "
            "xOrientation yOrientation zOrientation autoOrient=0|1 convergence interaxial scale@9"},
    Element{"adjust-reorient", "param*", "enabled=0|1 tilt pan roll convergence"},
    Element{"adjust-orientation", "param*", "enabled=0|1 tilt pan roll fieldOfView mapping@9=normal|tinyPlanet"},
    Element{"adjust-cinematic@10", "param*", "enabled=0|1 dataLocator& aperture"},
    Element{"adjust-colorConform@11", "",
            "enabled=0|1 autoOrManual=automatic|manual "
            "conformType=conformNone|conformAuto|conformHLGtoSDR|conformPQtoSDR|conformHLGtoPQ|conformPQtoHLG|"
            "conformSDRtoHLG75|conformSDRtoHLG100|conformSDRtoPQ peakNitsOfPQSource! peakNitsOfSDRToPQSource!"},
    Element{"adjust-stereo-3D@13", "param*", "enabled=0|1 convergence autoScale=0|1 swapEyes=0|1 depth"},
    Element{"adjust-loudness", "", "amount! uniformity!"},
    Element{"adjust-noiseReduction", "", "amount!"},
    Element{"adjust-humReduction", "", "frequency=50|60!"},
    Element{"adjust-EQ", "param*",
            "mode=flat|voice_enhance|music_enhance|loudness|hum_reduction|bass_boost|bass_reduce|treble_boost|treble_"
            "reduce!"},
    Element{"adjust-matchEQ", "data", ""},
    Element{"adjust-voiceIsolation@11", "", "amount!"},
    Element{"adjust-volume", "param*", "amount"},
    Element{"adjust-panner", "param*",
            "mode amount original_decoded_mix ambient_direct_mix surround_width left_right_mix front_back_mix "
            "LFE_balance rotation stereo_spread attenuate_collapse_mix center_balance"},
    Element{"tracking-shape@10", "",
            "id#! name offsetEnabled=0|1 analysisMethod=automatic|combined|machineLearning|pointCloud dataLocator&"},
    Element{"object-tracker@10", "tracking-shape+", ""},
    Element{"audio-channel-source", "$sound filter-audio* mute*",
            "srcCh! outCh role start duration enabled=0|1 active=0|1"},
    Element{"audio-role-source", "$sound filter-audio* mute*", "role! start duration enabled=0|1 active=0|1"},
    Element{"audition", "audio|video|title|ref-clip|asset-clip|clip|sync-clip|live-drawing+", "lane offset modDate"},
    Element{"spine", "$items|transition*", "lane offset name format&"},
    Element{
        "sequence", "note? spine metadata?",
        "$media audioLayout=mono|stereo|surround audioRate=32k|44.1k|48k|88.2k|96k|176.4k|192k renderFormat keywords"},
    Element{"multicam", "mc-angle* metadata?", "$media renderFormat"},
    Element{"mc-angle", "$items|transition*", "name angleID!"},
    Element{"mc-clip",
            "note? conform-rate? timeMap? adjust-volume? adjust-panner? mc-source* $connected* $markers* filter-audio* "
            "metadata?",
            "ref&! $clip srcEnable=all|audio|video audioStart audioDuration modDate"},
    Element{"mc-source", "audio-role-source* $picture $filters", "angleID! srcEnable=all|audio|video|none"},
    Element{"clip",
            "note? conform-rate? timeMap? $picture adjust-volume? adjust-panner? spine|$items|caption* $markers* "
            "audio-channel-source* $filters filter-audio* metadata?",
            "$clip format& audioStart audioDuration tcStart tcFormat=DF|NDF modDate"},
    Element{"ref-clip",
            "note? conform-rate? timeMap? $picture adjust-volume? adjust-panner? $connected* $markers* "
            "audio-role-source* $filters filter-audio* metadata?",
            "ref&! $clip srcEnable=all|audio|video audioStart audioDuration useAudioSubroles=0|1 modDate"},
    Element{"sync-clip",
            "note? conform-rate? timeMap? $picture adjust-volume? adjust-panner? spine|$items|caption* $markers* "
            "sync-source* $filters filter-audio* metadata?",
            "$clip format& audioStart audioDuration tcStart tcFormat=DF|NDF modDate"},
    Element{"sync-source", "audio-role-source*", "sourceID=storyline|connected!"},
    Element{"asset-clip",
            "note? conform-rate? timeMap? $picture adjust-volume? adjust-panner? $connected* $markers* "
            "audio-channel-source* $filters filter-audio* metadata?",
            "ref&! $clip? srcEnable=all|audio|video audioStart audioDuration format& tcStart tcFormat=DF|NDF modDate "
            "audioRole videoRole"},
    Element{"audio", "note? conform-rate? timeMap? adjust-volume? $connected* $markers* filter-audio*",
            "ref&! $clip srcID role srcCh outCh"},
    Element{"video", "param* note? conform-rate? timeMap? $picture $connected* $markers* $filters reserved?",
            "ref&! $clip srcID role"},
    Element{"live-drawing@11",
            "param* note? adjust-crop? adjust-corners? adjust-conform? adjust-transform? adjust-blend? "
            "adjust-360-transform? adjust-colorConform? adjust-stereo-3D? $connected* $markers* $filters",
            "$clip role dataLocator& animationType"},
    Element{"caption", "text* text-style-def* note?", "$clip role"},
    Element{"gap", "note? $connected* $markers* metadata?", "name offset start duration! enabled=0|1"},
    Element{"title", "param* text* text-style-def* note? $picture $connected* $markers* $filters metadata?",
            "ref&! $clip role"},
    Element{"text", "#PCDATA|text-style*",
            "display-style=pop-on|paint-on|roll-up roll-up-height position placement=left|right|top|bottom "
            "alignment=left|center|right"},
    Element{"text-style-def", "text-style", "id#! name"},
    Element{"text-style", "#PCDATA|param*",
            "ref& font fontSize fontFace fontColor backgroundColor bold=0|1 italic=0|1 strokeColor strokeWidth "
            "baseline shadowColor shadowOffset shadowBlurRadius kerning alignment=left|center|right|justified "
            "lineSpacing tabStops baselineOffset underline=0|1"},
    Element{"transition", "filter-video? filter-audio? $markers* metadata? reserved?", "name offset duration!"},
    Element{"filter-video", "info-asc-cdl<10? data* param*", "ref&! name nameOverride@12 enabled=0|1"},
    Element{"filter-video-mask", "mask-shape|mask-isolation+ filter-video filter-video?", "enabled=0|1 inverted=0|1"},
    Element{"mask-shape", "param*", "name enabled=0|1 blendMode=add|subtract|multiply tracking@10&"},
    Element{"mask-isolation", "data param*", "name enabled=0|1 blendMode=add|subtract|multiply type@9=3D|HSL"},
    Element{"filter-audio", "data? param*", "ref&! name nameOverride@12 enabled=0|1 presetID"},
    Element{"conform-rate", "",
            "scaleEnabled=0|1 srcFrameRate=23.98|24|25|29.97|30|60|47.95|48|50|59.94|90|100|119.88|120 "
            "frameSampling=floor|nearest-neighbor|frame-blending|optical-flow-classic|optical-flow|optical-flow-frc"},
    Element{"timeMap", "timept*",
            "frameSampling=floor|nearest-neighbor|frame-blending|optical-flow-classic|optical-flow|optical-flow-frc "
            "preservesPitch=0|1"},
    Element{"timept", "", "time! value! interp=smooth2|linear|smooth inTime outTime"},
    Element{"marker", "", "start! duration value! completed note"},
    Element{"rating", "", "name start duration value=favorite|reject! note"},
    Element{"keyword", "", "start duration value! note"},
    Element{"analysis-marker", "shot-type|stabilization-type+", "start duration"},
    Element{"hidden-clip-marker@13", "", ""},
    Element{"keyword-collection", "", "name!"},
    Element{"collection-folder", "collection-folder|keyword-collection|smart-collection*", "name!"},
    Element{
        "smart-collection",
        "match-text|match-ratings|match-media|match-clip|match-stabilization|match-keywords|match-shot|match-property|"
        "match-time|match-timeRange|match-roles|match-usage|match-representation|match-markers|match-analysis-type*",
        "name! match=any|all!"},
    Element{"match-text", "",
            "enabled=0|1 rule=includes|doesNotInclude|is|isNot|startsWith|endsWith|isRelatedTo value! "
            "scope@10=all|notes|names|markers|transcript|visual|all-text"},
    Element{"match-ratings", "", "enabled=0|1 value=favorites|rejected!"},
    Element{"match-media", "", "enabled=0|1 rule=is|isNot type=videoWithAudio|videoOnly|audioOnly|stills!"},
    Element{"match-clip", "",
            "enabled=0|1 rule=is|isNot type=audition|synchronized|compound|multicam|layeredGraphic|project!"},
    Element{"match-stabilization", "stabilization-type*",
            "enabled=0|1 rule=includesAny|includesAll|doesNotIncludeAny|doesNotIncludeAll"},
    Element{"match-keywords", "keyword-name*",
            "enabled=0|1 rule=includesAny|includesAll|doesNotIncludeAny|doesNotIncludeAll"},
    Element{"keyword-name", "", "value!"},
    Element{"match-shot", "shot-type*", "enabled=0|1 rule=includesAny|includesAll|doesNotIncludeAny|doesNotIncludeAll"},
    Element{"shot-type", "", "value=onePerson|twoPersons|group|closeUp|mediumShot|wideShot!"},
    Element{"stabilization-type", "", "value=excessiveShake!"},
    Element{"match-property", "",
            "enabled=0|1 "
            "key=reel|scene|take|audioOutputChannels|frameSize|videoFrameRate|audioSampleRate|cameraName|cameraAngle|"
            "projection|stereoscopic|cinematic! "
            "rule=includes|doesNotInclude|is|isNot|isSet|isNotSet|startsWith|endsWith value"},
    Element{"match-time", "", "enabled=0|1 type=contentCreated|dateImported! rule=is|isBefore|isAfter! value!"},
    Element{"match-timeRange", "",
            "enabled=0|1 type=contentCreated|dateImported! rule=isInLast|isNotInLast! value! "
            "units=hour|day|week|month|year"},
    Element{"match-roles", "role*", "enabled=0|1 rule=includesAny|includesAll|doesNotIncludeAny|doesNotIncludeAll"},
    Element{"role", "", "name!"},
    Element{"match-usage@9", "", "enabled=0|1 rule=used|unused"},
    Element{"match-representation@10", "", "enabled=0|1 type=original|optimized|proxy! rule=isAvailable|isMissing"},
    Element{"match-markers@10", "", "enabled=0|1 type=all|standard|allTodo|complete|incomplete"},
    Element{"match-analysis-type@14", "", "enabled=0|1 rule=isAvailable|isMissing value=any|transcript|visual"},
    Element{"chapter-marker", "", "start! duration value! note posterOffset"},
    Element{"note", "#PCDATA", ""},
    Element{"bookmark", "#PCDATA", ""},
    Element{"reserved", "#PCDATA", ""},
    Element{"array", "string*", ""},
    Element{"string", "#PCDATA", ""},
};

} // namespace

std::span<const Element> elements()
{
    return table;
}

std::span<const Abbreviation> abbreviations()
{
    static constexpr std::array list{
        Abbreviation{"$picture",
                     "object-tracker? adjust-crop? adjust-corners? adjust-conform? adjust-transform? adjust-blend? "
                     "adjust-stabilization? adjust-rollingShutter? adjust-360-transform? adjust-reorient? "
                     "adjust-orientation? adjust-cinematic? adjust-colorConform? adjust-stereo-3D?"},
        Abbreviation{"$connected",
                     "audio|video|clip|title|caption|mc-clip|ref-clip|sync-clip|asset-clip|audition|spine|"
                     "live-drawing"},
        Abbreviation{"$items",
                     "audio|video|clip|title|mc-clip|ref-clip|sync-clip|asset-clip|audition|gap|live-drawing"},
        Abbreviation{"$markers", "marker|chapter-marker|rating|keyword|analysis-marker|hidden-clip-marker"},
        Abbreviation{"$filters", "filter-video|filter-video-mask*"},
        Abbreviation{"$sound", "adjust-loudness? adjust-noiseReduction? adjust-humReduction? adjust-EQ|adjust-matchEQ? "
                               "adjust-voiceIsolation? adjust-volume? adjust-panner?"},
        Abbreviation{"$clip?", "lane offset name start duration enabled=0|1"},
        Abbreviation{"$clip", "lane offset name start duration! enabled=0|1"},
        Abbreviation{"$media", "format&! duration tcStart tcFormat=DF|NDF"},
    };
    return list;
}

} // namespace DocumentRules
