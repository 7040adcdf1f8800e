#include "fcp/titles/TitleDocument.h"

#include "core/files/Utf8Writer.h"
#include "fcp/xml/XmlText.h"
#include "fcp/xml/XmlWriter.h"

namespace {

TitlePattern makePattern(const TitleDocument::Layer &layer, std::optional<int> indentation)
{
    const TitlePattern::Place place{.lane = QByteArray::number(layer.lane), .indentation = indentation};
    const TitleTrack &track = layer.track;
    if (track.captions)
        return TitlePattern::caption(*track.captions, track.options, place);
    return track.look ? TitlePattern::copied(*track.look, layer.effectIDs, track.options, place)
                      : TitlePattern::basicTitle(track.options, layer.effectIDs.first(), place);
}

class Writer : public XmlWriter
{
public:
    Writer(const TitleDocument::Content &content, Utf8Writer &out)
        : XmlWriter(out)
        , m_content(content)
    {
        for (const TitleDocument::Layer &layer : content.layers)
            m_patterns.push_back(makePattern(layer, content.indentation));
    }

protected:
    bool hasInsertion(const xmlNode *element) const override { return element->_private != nullptr; }

    void insertBefore(const xmlNode *element, const xmlNode *child) override
    {
        const auto &run = *static_cast<const TitleRun *>(element->_private);
        if (child != run.before)
            return;
        for (size_t i = run.first; i != run.end; ++i)
            writeTitle(m_content.titles[i]);
        out().bytes(m_patterns.front().lastIndent);
    }

private:
    void writeTitle(const ConnectedTitle &title)
    {
        const TitlePattern &pattern = m_patterns[title.layer];
        out().bytes(pattern.indent);
        for (const TitlePattern::Piece &piece : pattern.pieces) {
            out().bytes(piece.bytes);
            fill(piece, title);
        }
    }

    void fill(const TitlePattern::Piece &piece, const ConnectedTitle &title)
    {
        using enum TitlePattern::Slot;
        switch (piece.slot) {
        case name:
            writeName(title.text);
            break;
        case offset:
            writeTime(title.offsetFrame, title);
            break;
        case duration:
            writeTime(title.frames, title);
            break;
        case style:
            out().number(title.styleNumber + piece.style);
            break;
        case text:
            XmlText::writeContent(title.text, out());
            break;
        case end:
            break;
        }
    }

    void writeName(QStringView text)
    {
        if (text.contains(u'\n'))
            XmlText::writeAttribute(text.toString().replace(u'\n', u' '), out());
        else
            XmlText::writeAttribute(text, out());
    }

    /// As FrameRate::time, whose product was checked when the title was connected.
    void writeTime(qint64 frames, const ConnectedTitle &title)
    {
        out().number(frames * m_content.layers[title.layer].track.options.rate.denominator);
    }

    const TitleDocument::Content &m_content;
    std::vector<TitlePattern> m_patterns; ///< A layer each.
};

} // namespace

TitleDocument::TitleDocument(Content content)
    : m_content(std::move(content))
{
    // libxml2 keeps one pointer in every node for the application: a clip knows its titles without a search.
    for (TitleRun &run : m_content.runs)
        run.clip->_private = &run;
}

std::vector<XmlDocument::Wanted> TitleDocument::marks() const
{
    std::vector<XmlDocument::Wanted> marks;
    for (const Layer &layer : m_content.layers) {
        const QByteArray lane = QByteArray::number(layer.lane);
        if (const auto &captions = layer.track.captions)
            marks.push_back(
                {.element = "caption", .attributes = {{"lane", lane}, {"role", captions->toText().toUtf8()}}});
        else
            marks.push_back({.element = "title", .attributes = {{"lane", lane}, {"ref", layer.effectIDs.first()}}});
    }
    return marks;
}

void TitleDocument::write(Utf8Writer &out) const
{
    Writer(m_content, out).write(m_content.tree);
    out.finish();
}

QByteArray TitleDocument::toUtf8() const
{
    QByteArray bytes;
    Utf8Writer out([&](QByteArrayView block) { bytes.append(block); });
    write(out);
    return bytes;
}
