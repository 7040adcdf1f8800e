#include "ai/AnswerLedger.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/time.h>

#include <thread>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

using Line = AnswerLedger::Line;

const AnswerLedger::Work work = {.kind = u"translate"_s,
                                 .direction = u"中文 → English"_s,
                                 .instruction = u"Do."_s,
                                 .model = "m",
                                 .endpoint = u"https://a"_s};

class Ledger : public testing::Test
{
protected:
    QStringList files() const { return QDir(path()).entryList(QDir::Files); }
    QString path() const { return folder.filePath(u"Answers"_s); }

    QTemporaryDir folder;
};

} // namespace

TEST_F(Ledger, a_later_run_of_the_same_work_finds_what_was_kept)
{
    AnswerLedger(path(), work).keep({{u"一"_s}, {u"二"_s, u"ref"_s}}, {u"one"_s, u"two"_s});
    const AnswerLedger later(path(), work);
    EXPECT_EQ(later.answer({u"一"_s}), u"one"_s);
    EXPECT_EQ(later.answer({u"二"_s, u"ref"_s}), u"two"_s);
    EXPECT_EQ(later.answer({u"二"_s}), std::nullopt);
    EXPECT_EQ(later.answer({u"二"_s, u"other"_s}), std::nullopt);
    EXPECT_EQ(later.answer({u"一"_s, std::nullopt, "[]"}), std::nullopt);
}

TEST_F(Ledger, whatever_decides_an_answer_tells_it_from_others)
{
    AnswerLedger(path(), work).keep({{u"一"_s}}, {u"one"_s});
    const auto isKnownWith = [&](auto &&change) {
        AnswerLedger::Work other = work;
        change(other);
        return AnswerLedger(path(), other).answer({u"一"_s}).has_value();
    };
    EXPECT_TRUE(isKnownWith([](auto &) {}));
    EXPECT_FALSE(isKnownWith([](auto &other) { other.kind = u"proofread"_s; }));
    EXPECT_FALSE(isKnownWith([](auto &other) { other.direction = u"English → 中文"_s; }));
    EXPECT_FALSE(isKnownWith([](auto &other) { other.instruction = u"Do it."_s; }));
    EXPECT_FALSE(isKnownWith([](auto &other) { other.model = "n"; }));
    EXPECT_FALSE(isKnownWith([](auto &other) { other.endpoint = u"https://b"_s; }));
    EXPECT_FALSE(isKnownWith([](auto &other) { other.isQuick = true; }));
    // Two values do not run into each other.
    EXPECT_FALSE(isKnownWith([](auto &other) {
        other.model = "mh";
        other.endpoint = u"ttps://a"_s;
    }));
}

TEST_F(Ledger, a_run_that_ended_takes_its_lines_along_and_leaves_those_of_others)
{
    AnswerLedger first(path(), work);
    first.keep({{u"一"_s}, {u"二"_s}}, {u"one"_s, u"two"_s});
    first.keep({{u"三"_s}}, {u"three"_s});
    AnswerLedger(path(), work).drop({{u"一"_s}, {u"三"_s}});
    const AnswerLedger later(path(), work);
    EXPECT_EQ(later.answer({u"一"_s}), std::nullopt);
    EXPECT_EQ(later.answer({u"二"_s}), u"two"_s);
    EXPECT_EQ(later.answer({u"三"_s}), std::nullopt);
    EXPECT_EQ(files().size(), 1);
    first.drop({{u"二"_s}});
    EXPECT_EQ(first.answer({u"二"_s}), std::nullopt);
    EXPECT_EQ(files(), QStringList());
}

TEST_F(Ledger, it_is_the_users_alone_and_can_be_emptied)
{
    AnswerLedger(path(), work).keep({{u"一"_s}}, {u"one"_s});
    struct stat status = {};
    ASSERT_EQ(stat(QFile::encodeName(path()).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700U);
    QFile notes(path() + u"/notes.txt"_s);
    ASSERT_TRUE(notes.open(QIODevice::WriteOnly));
    AnswerLedger::clear(path());
    EXPECT_EQ(files(), QStringList({u"notes.txt"_s}));
    EXPECT_EQ(AnswerLedger(path(), work).answer({u"一"_s}), std::nullopt);
}

TEST_F(Ledger, the_oldest_go_when_there_are_too_many_bytes_or_days)
{
    const QString text(700'000, u'x');
    const auto age = [&](int days) {
        for (const QFileInfo &file : QDir(path()).entryInfoList(QDir::Files)) {
            const time_t then = file.lastModified().toSecsSinceEpoch() - days * 86'400 - 10;
            const timeval times[2] = {{then, 0}, {then, 0}};
            ASSERT_EQ(utimes(QFile::encodeName(file.filePath()).constData(), times), 0);
        }
    };
    for (int i = 0; i < 12; ++i) {
        AnswerLedger(path(), work).keep({{QString::number(i)}}, {text});
        age(0);
    }
    const AnswerLedger ledger(path(), work);
    EXPECT_EQ(files().size(), 11); // 11 × 0.7 MB ≤ 8 MiB
    EXPECT_EQ(ledger.answer({u"0"_s}), std::nullopt);
    EXPECT_EQ(ledger.answer({u"1"_s}), text);
    age(29);
    EXPECT_TRUE(AnswerLedger(path(), work).answer({u"11"_s}));
    age(1);
    EXPECT_FALSE(AnswerLedger(path(), work).answer({u"11"_s}));
    EXPECT_EQ(files(), QStringList());
}

TEST_F(Ledger, a_damaged_file_costs_only_its_own_lines)
{
    AnswerLedger(path(), work).keep({{u"一"_s}}, {u"one"_s});
    QFile file(path() + u'/' + files().first());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.resize(file.size() - 2));
    AnswerLedger ledger(path(), work);
    EXPECT_EQ(ledger.answer({u"一"_s}), std::nullopt);
    ledger.keep({{u"二"_s}}, {u"two"_s});
    EXPECT_EQ(AnswerLedger(path(), work).answer({u"二"_s}), u"two"_s);
}

TEST_F(Ledger, runs_at_the_same_time_do_not_harm_each_other)
{
    constexpr int runs = 4;
    constexpr int batches = 20;
    std::vector<std::thread> threads;
    for (int run = 0; run < runs; ++run) {
        threads.emplace_back([&, run] {
            AnswerLedger ledger(path(), work);
            for (int batch = 0; batch < batches; ++batch)
                ledger.keep({{u"%1-%2"_s.arg(run).arg(batch)}}, {u"x"_s});
            ledger.drop({{u"%1-0"_s.arg(run)}});
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    const AnswerLedger ledger(path(), work);
    for (int run = 0; run < runs; ++run) {
        EXPECT_FALSE(ledger.answer({u"%1-0"_s.arg(run)}));
        for (int batch = 1; batch < batches; ++batch)
            EXPECT_TRUE(ledger.answer({u"%1-%2"_s.arg(run).arg(batch)}));
    }
}
