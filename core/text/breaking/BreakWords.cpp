#include "core/text/breaking/BreakWords.h"

#include "core/text/Characters.h"
#include "core/text/UnitSet.h"

#include <QHash>
#include <QString>
#include <QVarLengthArray>

#include <algorithm>

namespace BreakWords {

namespace {

constexpr QStringView conjunctions =
    u"因为 所以 但是 但 不过 而且 而 并且 并 或者 或 还是 如果 要是 虽然 然后 那么 于是 因此 以及 同时 另外 "
    u"其实 只要 只有 除非 "
    u"无论 不管 尽管 即使 就算 哪怕 可是 然而 否则 接着 比如 例如 包括 也就是 就是说 换句话说 既然 由于 以便 "
    u"甚至 此外 最后 首先 其次 "
    u"再 再看 再把 顺便 順便 不仅 不但 因此 从而 直到 每当 当 "
    u"因為 但是 不過 並且 並 還是 雖然 然後 那麼 於是 以及 同時 另外 其實 只要 除非 無論 不管 儘管 即使 就算 "
    u"然而 否則 接著 比如 "
    u"包括 也就是 就是說 換句話說 既然 由於 甚至 此外 最後 不僅 不但 從而 當 "
    u"and but or because so when which who where while if although though since unless until that than then";

constexpr QStringView prepositions =
    u"在 从 对 向 和 与 跟 给 把 被 让 将 为 为了 通过 根据 关于 按照 以 用 由 比 先 就 才 也 都 还 "
    u"從 對 與 給 讓 將 為 為了 通過 根據 關於 還 "
    u"in on at to from with by for of about into over after before without through";

constexpr QStringView finalParticles =
    u"了 吗 呢 吧 啊 呀 嘛 啦 哦 喔 哈 着 过 嗎 啦 囉 著 過 的话 的話 时候 時候 之后 之後 以后 以後 之前 以前";

constexpr QStringView clinging =
    u"的 地 得 了 吗 呢 吧 啊 呀 嘛 啦 哦 喔 着 过 们 里 上 下 中 内 外 里面 上面 下面 之后 之前 之间 以后 "
    u"以前 时 时候 起来 下来 出来 过来 进去 来说 的话 等 等等 似的 一样 而已 "
    u"嗎 囉 著 過 們 裡 裏 內 裡面 裏面 之後 之間 以後 時 時候 起來 下來 出來 過來 進去 來說 的話 一樣";

constexpr QStringView leading =
    u"把 被 在 从 对 向 和 与 跟 给 让 将 为 以 用 由 比 到 是 很 不 没 没有 也 都 就 要 会 能 可以 应该 需要 必须 "
    u"想 先 再 还 又 才 更 最 太 "
    u"非常 十分 特别 比较 正在 已经 曾经 一 第 这 那 每 各 某 哪 几 两 我 你 他 她 它 我们 你们 他们 如果 因为 "
    u"所以 但是 但 不过 而且 然后 或者 "
    u"虽然 我的 你的 他的 一个 这个 那个 别 请 觉得 认为 希望 知道 发现 开始 打算 "
    u"從 對 與 給 讓 將 為 沒 沒有 會 應該 必須 還 纔 特別 比較 已經 這 幾 兩 我們 你們 他們 因為 不過 然後 雖然 "
    u"一個 這個 那個 別 請 覺得 認為 發現 開始 "
    u"a an the of to in on at for with by from and or but is are was were be my your his her its our their this "
    u"that "
    u"these those not very i you he she it we they who which can will would should could may might must has have "
    u"had do does did mr mrs ms dr no";

constexpr qsizetype longest = 8; ///< Of all words above.

using Table = QHash<QStringView, quint8>;

Table table()
{
    Table result;
    const auto add = [&](QStringView list, Trait trait) {
        for (const QStringView word : list.tokenize(u' ', Qt::SkipEmptyParts))
            result[word] |= trait;
    };
    add(conjunctions, conjunction);
    add(prepositions, preposition);
    add(finalParticles, finalParticle);
    add(clinging, clingsToPrevious);
    add(leading, clingsToNext);
    return result;
}

} // namespace

quint8 traits(QStringView word)
{
    static const Table words = table();
    if (word.isEmpty() || word.size() > longest)
        return 0;
    if (word[0] < QChar(0x80)) {
        QVarLengthArray<QChar, longest> lower;
        for (const QChar letter : word)
            lower.append(letter.toLower());
        return words.value(QStringView(lower.data(), lower.size()));
    }
    // Joined words like 先把 end in what clings.
    static constexpr UnitSet ends(u"把被给給跟到");
    const bool leads = word.size() == 2 && ends.contains(word[1]);
    return static_cast<quint8>(words.value(word) | (leads ? clingsToNext : 0));
}

bool isNumeral(QStringView word)
{
    static constexpr UnitSet characters(u"零〇一二三四五六七八九十百千万亿两几多半第点萬億兩幾點");
    const auto isPart = [&](QChar unit) { return unit.isDigit() || characters.contains(unit); };
    return !word.isEmpty() && std::all_of(word.begin(), word.end(), isPart);
}

bool isUnit(QStringView word)
{
    static constexpr UnitSet measures(
        u"个只条张件块片本台部辆架次回遍场届期集季帧格倍米克吨升元角分秒点时天日周月年岁人"
        u"位名家种类层楼级号页章节段句字行列度寸尺里亩公千万亿毫"
        u"百款套项份批组轮代首封道颗根支把双瓶杯碗箱包袋成折％%‰℃°"
        u"個條張塊臺輛場屆幀噸點時歲種類層樓級號頁節畝萬億項組輪顆雙");
    static constexpr QStringView latin =
        u" mm cm km m g kg t s ms h min gb mb kb tb hz khz mhz ghz px pt fps bit k w v a db mp ml l ft in lb p i ";
    if (word.isEmpty())
        return false;
    return measures.contains(word[0]) || (!Characters::isCommonIdeograph(word[0].unicode()) &&
                                          latin.contains(u' ' + word.toString().toLower() + u' '));
}

} // namespace BreakWords
