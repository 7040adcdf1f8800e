#include "app/fonts/FontCatalogue.h"

#include "app/fonts/FontIndexFile.h"
#include "core/PlatformError.h"
#include "core/files/FileReader.h"
#include "tests/app/fonts/SyntheticFonts.h"
#include "tests/support/Events.h"

#include <QFile>
#include <QFontDatabase>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <mutex>

using namespace Qt::StringLiterals;

namespace {

class FontCatalogueTest : public ::testing::Test
{
protected:
    QString indexFile() const { return m_folder.filePath(u"Lintora/Fonts.json"_s); }

    /// A system with `fonts`; counts how many of them are opened.
    FontCatalogue::Source system(const QList<FontFamily> &fonts)
    {
        const auto find = [fonts](const QString &family) {
            return *std::ranges::find(fonts, family, &FontFamily::family);
        };
        return {.families =
                    [fonts] {
                        QStringList names;
                        for (const FontFamily &font : fonts)
                            names.append(font.family);
                        return names;
                    },
                .faces = [find](const QString &family) { return find(family).faces; },
                .names =
                    [this, find](const QString &family) {
                        ++m_opened;
                        return FontNames::Names{.chinese = find(family).chineseName,
                                                .english = find(family).englishName,
                                                .families = {family}};
                    }};
    }

    /// Loads a catalogue of `fonts` to the end and gives back what it holds.
    QList<FontFamily> loaded(const QList<FontFamily> &fonts)
    {
        m_opened = 0;
        FontCatalogue catalogue(indexFile(), system(fonts));
        catalogue.load();
        EXPECT_TRUE(Events::waitFor([&] { return catalogue.isReady(); }));
        return catalogue.families();
    }

    int opened() const { return m_opened; }

private:
    QTemporaryDir m_folder;
    std::atomic<int> m_opened = 0;
};

} // namespace

TEST_F(FontCatalogueTest, finds_out_the_names_and_sounds_of_all_families)
{
    const QList<FontFamily> fonts = SyntheticFonts::families(2'000);
    EXPECT_EQ(loaded(fonts), fonts);
    EXPECT_EQ(opened(), 2'000);
}

TEST_F(FontCatalogueTest, opens_no_font_twice)
{
    QList<FontFamily> fonts = SyntheticFonts::families(20);
    loaded(fonts);
    EXPECT_EQ(loaded(fonts), fonts);
    EXPECT_EQ(opened(), 0) << "all kept from the last run";

    fonts.removeFirst();
    fonts[3].faces.append(u"Heavy"_s);
    fonts.append(
        {.family = u"New"_s, .chineseName = u"新"_s, .englishName = {}, .faces = {}, .pronunciation = u"xin"_s});
    EXPECT_EQ(loaded(fonts), fonts);
    EXPECT_EQ(opened(), 2) << "the new one and the one with other faces";
    EXPECT_EQ(FontIndexFile::load(indexFile()), fonts) << "what is gone is forgotten";
}

TEST_F(FontCatalogueTest, finds_all_out_again_when_the_file_is_damaged)
{
    const QList<FontFamily> fonts = SyntheticFonts::families(20);
    loaded(fonts);
    const QByteArray good = FileReader::readAll(indexFile());
    QByteArray older = good;
    older.replace("\"version\":1", "\"version\":0");
    for (const QByteArray &bytes : {QByteArray(), good.first(good.size() / 2), QByteArray("[]"), older}) {
        QFile file(indexFile());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        EXPECT_EQ(loaded(fonts), fonts);
        EXPECT_EQ(opened(), 20);
        EXPECT_EQ(FileReader::readAll(indexFile()), good);
    }
}

TEST_F(FontCatalogueTest, offers_the_plain_names_while_fonts_are_being_opened)
{
    std::mutex gate;
    std::unique_lock closed(gate);
    const QList<FontFamily> fonts = SyntheticFonts::families(3);
    FontCatalogue::Source slow = system(fonts);
    slow.names = [&gate, names = slow.names](const QString &family) {
        const std::scoped_lock open(gate);
        return names(family);
    };
    FontCatalogue catalogue(indexFile(), slow);
    catalogue.load();
    ASSERT_TRUE(Events::waitFor([&] { return !catalogue.families().isEmpty(); }));
    EXPECT_FALSE(catalogue.isReady());
    EXPECT_EQ(catalogue.search(fonts[1].family).value(0), 1);
    EXPECT_TRUE(catalogue.search(fonts[1].chineseName).isEmpty());
    catalogue.load();
    closed.unlock();
    ASSERT_TRUE(Events::waitFor([&] { return catalogue.isReady(); }));
    EXPECT_EQ(catalogue.search(fonts[1].chineseName).value(0), 1);
}

TEST_F(FontCatalogueTest, can_go_away_while_it_works)
{
    for (int round = 0; round < 20; ++round) {
        FontCatalogue catalogue(indexFile(), system(SyntheticFonts::families(50)));
        catalogue.load();
        if (round % 2 == 0)
            Events::handle();
    }
}

TEST_F(FontCatalogueTest, says_when_it_cannot_keep_what_it_found)
{
    FontCatalogue catalogue(u"/dev/null/Fonts.json"_s, system(SyntheticFonts::families(2)));
    QString reason;
    QObject::connect(&catalogue, &FontCatalogue::indexNotSaved, [&](const QString &words) { reason = words; });
    catalogue.load();
    ASSERT_TRUE(Events::waitFor([&] { return catalogue.isReady(); }));
    EXPECT_FALSE(reason.isEmpty());
    EXPECT_EQ(catalogue.families().size(), 2);
}

TEST_F(FontCatalogueTest, reads_the_fonts_of_this_system)
{
    if (!QFontDatabase::hasFamily(u"Noto Sans CJK SC"_s))
        GTEST_SKIP() << "needs the font Noto Sans CJK SC (package fonts-noto-cjk)";
    FontCatalogue catalogue(indexFile());
    catalogue.load();
    ASSERT_TRUE(Events::waitFor([&] { return catalogue.isReady(); }));
    const QList<qsizetype> found = catalogue.search(u"noto sans cjk sc"_s);
    ASSERT_FALSE(found.isEmpty());
    const FontFamily family = catalogue.families()[found[0]];
    EXPECT_EQ(family.family, u"Noto Sans CJK SC");
    EXPECT_EQ(family.englishName, u"Noto Sans CJK SC");
    EXPECT_TRUE(family.faces.contains(u"Bold"_s));
}

TEST(FontCatalogue, begins_with_a_free_Chinese_family_where_it_is_installed)
{
    EXPECT_EQ(FontCatalogue::defaultFamily({u"Arial"_s, u"Source Han Sans CN"_s}), u"Source Han Sans CN");
    EXPECT_EQ(FontCatalogue::defaultFamily({u"Arial"_s}), u"PingFang SC");
}

TEST(FontIndexFile, refuses_what_it_did_not_write)
{
    const QByteArray family = R"({"chinese":"","english":"","faces":[],"family":"A","pronunciation":""})";
    const QByteArray good = R"({"families":[)" + family + R"(],"version":1})";
    EXPECT_EQ(FontIndexFile::decode(good).size(), 1);
    EXPECT_EQ(FontIndexFile::encode(FontIndexFile::decode(good)), good);
    QByteArray nameless = good;
    nameless.replace("\"A\"", "\"\"");
    const QByteArrayList refused{"",
                                 "{}",
                                 good + good,
                                 R"({"families":[)" + family + ',' + family + R"(],"version":1})",
                                 R"({"families":[{}],"version":1})",
                                 R"({"families":[],"version":2})",
                                 nameless};
    for (const QByteArray &bytes : refused)
        EXPECT_THROW(FontIndexFile::decode(bytes), PlatformError) << bytes.toStdString();
}
