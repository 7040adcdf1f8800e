#include "store/RecordLog.h"

#include "core/files/FileReader.h"
#include "tests/support/Generator.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class RecordLogTest : public ::testing::Test
{
protected:
    QString path() const { return m_folder.filePath(u"a.steps"_s); }

    void put(const QByteArray &bytes) const
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    /// A file of some records, a part of which was appended.
    QByteArray write(const QList<QByteArray> &content) const
    {
        RecordLog log(path());
        EXPECT_TRUE(log.begin(content.first(2)));
        log.append(content.sliced(2, 1));
        log.append(content.sliced(3));
        return FileReader::readAll(path());
    }

    const QList<QByteArray> records{"a", QByteArray(20, 'b'), QByteArray(1, '\0'), "ddd", QByteArray(9, '\xFF'), "f"};

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(RecordLogTest, of_every_torn_file_the_whole_records_are_read_and_it_goes_on_behind_them)
{
    const QByteArray whole = write(records);
    qsizetype most = 0;
    for (qsizetype length = 0; length <= whole.size(); ++length) {
        put(whole.first(length));
        RecordLog log(path());
        const QList<QByteArray> read = log.open();
        ASSERT_EQ(read, records.first(read.size())) << length;
        ASSERT_GE(read.size(), most) << length;
        most = read.size();
        if (!log.isOpen()) {
            ASSERT_LT(length, 16) << "the header alone";
            continue;
        }
        log.append({"next"});
        ASSERT_EQ(log.open(), read + QList<QByteArray>{"next"}) << length;
    }
    EXPECT_EQ(most, records.size());
}

TEST_F(RecordLogTest, a_flipped_bit_ends_the_file_where_it_stands)
{
    const QByteArray whole = write(records);
    Generator generator(1);
    for (qsizetype at = 0; at < whole.size(); ++at) {
        QByteArray damaged = whole;
        damaged[at] = char(damaged.at(at) ^ (1 << generator.number(0, 7)));
        put(damaged);
        const QList<QByteArray> read = RecordLog(path()).open();
        ASSERT_LT(read.size(), records.size()) << at;
        ASSERT_EQ(read, records.first(read.size())) << at;
    }
}

TEST_F(RecordLogTest, a_record_that_another_file_had_in_its_place_is_none)
{
    const QByteArray whole = write(records);
    const QByteArray other = write({"A", records[1], records[2], records[3]});
    put(other.first(16 + 12 + 1) + whole.sliced(16 + 12 + 1));
    EXPECT_EQ(RecordLog(path()).open(), QList<QByteArray>{"A"});
}

TEST_F(RecordLogTest, a_second_program_neither_reads_nor_writes_what_one_has)
{
    RecordLog first(path());
    ASSERT_TRUE(first.begin({"a"}));
    {
        RecordLog second(path());
        EXPECT_EQ(second.open(), QList<QByteArray>());
        EXPECT_FALSE(second.isOpen());
        EXPECT_FALSE(second.begin({"x"}));
        second.discard();
    }
    first.append({"b"});
    EXPECT_EQ(first.open(), QList<QByteArray>({"a", "b"}));
    first.discard();
    EXPECT_FALSE(QFile::exists(path()));
}
