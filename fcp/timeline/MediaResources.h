#pragma once

#include "fcp/timeline/MediaAsset.h"
#include "fcp/xml/XmlDocument.h"

#include <QHash>

#include <unordered_map>

/// A "sequence" element: the timeline of a project or of a compound clip.
struct StorySequence
{
    const xmlNode *spine = nullptr;             ///< Null when it has none.
    Rational start = {};                        ///< The time at which it begins, "tcStart". Seconds.
    std::optional<Rational> duration = {};      ///< Seconds, as stated; absent when it is not told.
    std::optional<Rational> frameDuration = {}; ///< Seconds, above 0; absent when the format does not tell.
};

/// The resources of a document by their ids. Each is read once, however many clips refer to it. The document must
/// outlive it.
class MediaResources
{
public:
    /// Takes the "resources" of the root and, as version 1.2 has them, of `project`, which may be null.
    /// @throws ConversionError "FCP 资源编号重复。"
    MediaResources(const XmlDocument &document, const xmlNode *project);

    /// The resource to which an attribute of `element` refers, null when there is none.
    const xmlNode *find(const xmlNode *element, QByteArrayView attribute) const;

    /// Seconds that a frame lasts in the format to which `element` refers by "format", above 0; absent when it does not
    /// tell.
    std::optional<Rational> frameDuration(const xmlNode *element) const;

    /// @throws ConversionError "FCP 时间值无效。"
    StorySequence readSequence(const xmlNode *sequence) const;

    const MediaAsset &asset(const xmlNode *asset);       ///< @throws ConversionError "FCP 时间值无效。"
    const StorySequence &compound(const xmlNode *media); ///< Empty for a "media" without a sequence. @throws as above

private:
    void add(const xmlNode *parent);

    QHash<QByteArray, const xmlNode *> m_byId;
    std::unordered_map<const xmlNode *, MediaAsset> m_assets;
    std::unordered_map<const xmlNode *, StorySequence> m_compounds;
};
