#pragma once

#include "core/ConversionError.h"
#include "fcp/FCPXML.h"
#include "fcp/titles/TitleFitting.h"
#include "tests/fcp/PublishedDtd.h"
#include "tests/fcp/xml/CanonicalXml.h"
#include "tests/support/Generator.h"

#include <gtest/gtest.h>

/// Projects of a user, and what titles become in them.
namespace TitledProject {

using namespace Qt::StringLiterals;

/// A user's project around the content of its spine, at 25 frames a second unless told otherwise.
struct Project
{
    QByteArray spine = "<gap name='Gap' offset='0s' start='3600s' duration='100s'/>";
    QByteArray sequenceAttributes = "duration='100s' tcStart='0s'";
    QByteArray frameDuration = "100/2500s";
    QByteArray version = "1.10";

    QByteArray bytes() const
    {
        return "<?xml version='1.0' encoding='UTF-8'?><!DOCTYPE fcpxml>\n<!-- mine --><fcpxml version='" + version +
               "'>\n  <resources>\n    <format id='r1' frameDuration='" + frameDuration +
               "' width='1920' height='1080'/>\n    <effect id='r2' name='Basic Title' uid='.../x.moti'/>"
               "<asset id='r3' name='a' hasVideo='1' hasAudio='1' duration='100s'><media-rep kind='original-media' "
               "src='file:///a.mov'><bookmark>Ym9va21hcms=\n</bookmark></media-rep></asset>"
               "<media id='r4' name='m'><sequence format='r1'><spine/></sequence></media>"
               "<media id='r5' name='mc'><multicam format='r1'/></media>\n  </resources>\n"
               "  <library location='file:///l.fcpbundle/'><event name='E' uid='1'>\n"
               "    <project name='我的 &amp; 项目' uid='U' modDate='2024-01-01'>\n      <sequence format='r1' " +
               sequenceAttributes + ">\n        <spine>\n" + spine +
               "</spine>\n      </sequence>\n    </project><?keep me?>\n  </event></library>\n</fcpxml>";
    }
};

struct Connected
{
    QByteArray clip; ///< Name of the element that carries the title.
    QByteArray offset;
    QByteArray lane;
};

inline Options options25(qint64 rateIndex = 2)
{
    Options options;
    options.rate = FrameRate::all()[static_cast<size_t>(rateIndex)];
    options.name = u"成片"_s;
    return options;
}

inline QByteArray converted(const Project &project, const QList<Subtitle> &cues, const Options &options = options25())
{
    return FCPXML::convert(cues, XmlDocument::parse(project.bytes(), {}), options).toUtf8();
}

/// The titles of ours in document order.
inline QList<Connected> connected(const QByteArray &bytes)
{
    const XmlDocument document = XmlDocument::parse(bytes, {});
    QList<Connected> found;
    for (const xmlNode *element = document.root(); element; element = Xml::nextElement(element, document.root())) {
        if (Xml::isElement(element, "title") && Xml::attribute(element, "ref")->startsWith("subeffect"))
            found.append({.clip = Xml::elementName(element->parent).toByteArray(),
                          .offset = *Xml::attribute(element, "offset"),
                          .lane = *Xml::attribute(element, "lane")});
    }
    return found;
}

inline Subtitle at(qint64 start, qint64 end, qint64 id = 1)
{
    return {.id = id, .start = start, .end = end, .text = u"字"_s};
}

inline QByteArray offsetOf(const Project &project, qint64 start, const Options &options = options25())
{
    return connected(converted(project, {at(start, start + 40)}, options)).value(0).offset;
}

inline std::string refusal(const Project &project, const QList<Subtitle> &cues, const Options &options = options25())
{
    try {
        converted(project, cues, options);
        return "accepted";
    } catch (const ConversionError &error) {
        return error.message().toStdString();
    }
}

/// A storyline clip of every kind, each two seconds long, full of what may stand before and after connected items.
inline QByteArrayList everyClip()
{
    const QByteArray before = "<note>n</note><conform-rate scaleEnabled='0'/><adjust-transform position='0 0'/>"
                              "<adjust-volume amount='-3dB'/>";
    const QByteArray items = "<video ref='r2' lane='-2' offset='0s' duration='1s'/>";
    const QByteArray markers =
        "<marker start='0s' value='m'/><chapter-marker start='0s' value='c'/><rating value='favorite'/>"
        "<keyword value='k'/><analysis-marker><shot-type value='wideShot'/></analysis-marker>";
    const QByteArray filters = "<filter-video ref='r2'/><filter-video-mask><mask-shape/><filter-video ref='r2'/>"
                               "</filter-video-mask>";
    const QByteArray audioFilter = "<filter-audio ref='r2'/>";
    const QByteArray metadata = "<metadata><md key='a' value='b'/></metadata>";
    const QByteArray time = " offset='%1s' duration='2s' start='0s'";
    return {
        "<asset-clip ref='r3'" + time + ">" + before + items + markers + "<audio-channel-source srcCh='1'/>" + filters +
            audioFilter + metadata + "</asset-clip>",
        "<clip" + time + ">" + before + "<video ref='r3' offset='0s' duration='2s'/>" + items + markers +
            "<audio-channel-source srcCh='1'/>" + filters + audioFilter + metadata + "</clip>",
        "<ref-clip ref='r4'" + time + ">" + before + items + markers + "<audio-role-source role='d'/>" + filters +
            audioFilter + metadata + "</ref-clip>",
        "<sync-clip" + time + ">" + before + "<video ref='r3' offset='0s' duration='2s'/>" + items + markers +
            "<sync-source sourceID='storyline'><audio-role-source role='d'/></sync-source>" + filters + audioFilter +
            metadata + "</sync-clip>",
        "<mc-clip ref='r5'" + time + "><note>n</note><adjust-volume amount='0dB'/><mc-source angleID='1'/>" + items +
            markers + audioFilter + metadata + "</mc-clip>",
        "<video ref='r3'" + time + "><param name='p' value='1'/><note>n</note><adjust-crop mode='trim'/>" + items +
            markers + filters + "<reserved>x</reserved></video>",
        "<audio ref='r3'" + time + "><note>n</note><adjust-volume amount='0dB'/>" + items +
            "<marker start='0s' value='m'/>" + audioFilter + "</audio>",
        "<gap" + time + "><note>n</note>" + items + markers + metadata + "</gap>",
        "<title ref='r2'" + time +
            "><text/><text-style-def id='ts1'><text-style/></text-style-def><note>n</note>"
            "<adjust-transform position='0 0'/>" +
            items + markers + filters + metadata + "</title>",
    };
}

inline Project projectOfEveryClip()
{
    Project project;
    project.spine.clear();
    int second = 0;
    for (const QByteArray &clip : everyClip()) {
        project.spine += "\n          " + QByteArray(clip).replace("%1", QByteArray::number(second));
        second += 2;
    }
    return project;
}

} // namespace TitledProject
