// Long random sequences of operations in which any allocation may fail: what follows finds texts, messages and pools in
// every state that a failure can leave.
#include "karctrl.h"
#include "karmatrix.h"
#include "karstringlist.h"

#include "everyallocation.h"
#include "testrandom.h"
#include "testvarpool.h"

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(EveryAllocation); // there is no table here

namespace {

constexpr int steps = 20000;

/// One step in three is refused one of its first requests, alone or with all after it.
class Refusing {
public:
    explicit Refusing(TestRandom &random)
    {
        refusedHeap.start(random.below(3) == 0 ? 1 + random.below(4) : 0, random.below(2) == 0, RefusedHeap::blocks);
        refusedHeap.armed = true;
    }
    ~Refusing() { refusedHeap.armed = false; }
    Refusing(const Refusing &) = delete;
    Refusing &operator=(const Refusing &) = delete;
};

const char *const texts[] = {"", "a", " ab,c\t", "0123456789abcdef", "12,34;56,78;90,ab;cd,ef;gh,ij", "\t-7fff "};

void changeText(karString &s, const karString &other, TestRandom &random)
{
    const char *const text = texts[random.below(6)];
    const unsigned n = random.below(40);
    int number;
    double real;
    switch (random.below(32)) {
    case 0:
        s = other;
        break;
    case 1:
        s = text;
        break;
    case 2:
        s &= other;
        break;
    case 3:
        s &= text;
        break;
    case 4:
        s &= 'x';
        break;
    case 5:
        s = s & other;
        break;
    case 6:
        s = s & text;
        break;
    case 7:
        s.reSize(n);
        break;
    case 8:
        s.cut(n);
        break;
    case 9:
        s.ncopy(text, n);
        break;
    case 10:
        s.ncopy(text, random.below(8), random.between(-1, 40));
        break;
    case 11:
        s.ncat(text, n);
        break;
    case 12:
        s.format("%s and %*d", text, random.between(0, 30), 7);
        break;
    case 13:
        s.format("%600s", text);
        break;
    case 14:
        s.int2s(random.anyInt(), random.between(-1, 36));
        break;
    case 15:
        s.double2s(random.between(-1e9, 1e9), random.between(-1, 20), random.below(2) == 0);
        break;
    case 16:
        s.time(random.below(1000000));
        break;
    case 17:
        s = s.karstrtok(",;");
        break;
    case 18:
        s.karstrtok(",");
        break;
    case 19:
        s = s.notIn("0a");
        break;
    case 20:
        s = s.maskchar(',', 2);
        break;
    case 21:
        s = s.replacechar(',', random.below(2) ? ';' : '\0');
        break;
    case 22:
        s = s.removechar('a');
        break;
    case 23:
        s.trim();
        break;
    case 24:
        s.ltrim("0a");
        break;
    case 25:
        s.rtrim("9f");
        break;
    case 26:
        s.toUpper();
        break;
    case 27:
        s.toLower();
        break;
    case 28:
        s.s2int(number);
        break;
    case 29:
        s.s2double(real);
        break;
    case 30:
        s[n] = 'y';
        break;
    default:
        s = karString(other, n);
        break;
    }
}

/// Every way to read; a text without a buffer is empty.
void readText(const karString &s, const karString &other, TestRandom &random)
{
    const auto from = static_cast<int>(random.below(40));
    EXPECT_LE(s.vstrlen(), s.size());
    s.getChar(static_cast<unsigned>(from));
    s.vstrchr(',');
    s.vstrrchr(',', static_cast<unsigned>(from));
    s.vstrstr("ab");
    s.karstrchr(',', from);
    s.karstrchr(",;", from);
    s.karstrrchr(',', from);
    s.karstrrchr(",;", from);
    s.karstrstr("ab", from);
    s.karstrrstr("ab", from);
    s.countchar(',');
    EXPECT_EQ(s == other, other == s);
    EXPECT_EQ((s < other), (other > s));
    EXPECT_EQ(s == "", s.vstrlen() == 0);
    if (!TextProbe::bytes(s)) {
        EXPECT_EQ(s.vstrlen(), 0u);
    }
}

/// Each test gives back all that it takes, one request of the library being one of the system.
class RandomRefusals : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(Holdings(), before); }

    const Mark direct{0};
    const Holdings before;
};

} // namespace

TEST_F(RandomRefusals, TextsStayReadable)
{
    constexpr std::uint64_t seed = 41;
    SCOPED_TRACE(seed);
    TestRandom random(seed);
    karString strings[6];
    int without = 0;
    for (int step = 0; step < steps && !HasFailure(); ++step) {
        SCOPED_TRACE(step);
        karString &s = strings[random.below(6)];
        const karString &other = strings[random.below(6)];
        {
            const Refusing refusing(random);
            changeText(s, other, random);
        }
        readText(s, other, random);
        without += !TextProbe::bytes(s);
        if (s.size() > 400)
            s.~karString(), ::new (&s) karString;
    }
    EXPECT_GT(without, steps / 20);
    for (karString &s : strings) {
        s.reSize(s.size()); // always gets a buffer
        s = "normal again";
        EXPECT_TRUE(s == "normal again");
    }
}

TEST_F(RandomRefusals, MessagesAndProgressStayReadable)
{
    constexpr std::uint64_t seed = 42;
    SCOPED_TRACE(seed);
    TestRandom random(seed);
    karCtrl ctrl;
    const karString text(texts[4]);
    for (int step = 0; step < steps && !HasFailure(); ++step) {
        SCOPED_TRACE(step);
        karMessageBase *message = ctrl.getMessage(EnumMessageID(random.below(4)));
        const auto id = EnumMessageID(1 + random.below(3));
        const int index = random.between(-1, 3);
        {
            const Refusing refusing(random);
            switch (random.below(message ? 12 : 5)) {
            case 0:
            case 1:
                ctrl.addMessage(id, random.between(-1, 3));
                break;
            case 2:
                ctrl.addPercentLayer();
                break;
            case 3:
                ctrl.removePercentLayer();
                break;
            case 4:
                random.below(8) ? ctrl.setLayerPercent(random.between(-1, 101)) : ctrl.resetPercent();
                break;
            case 5:
                message->setParamCount(random.between(-1, 3));
                break;
            case 6:
                index < message->getParamCount() && index >= 0 ? message->setId(index, 1) : *message;
                break;
            case 7:
                index < message->getParamCount() && index >= 0 ? message->setText(index, text) : *message;
                break;
            case 8:
                index < message->getParamCount() && index >= 0 ? message->setDouble(index, 2.0) : *message;
                break;
            case 9:
                message->setParam(index, static_cast<karDataBase *>(nullptr));
                break;
            default:
                ctrl.removeMessage(message);
                break;
            }
        }
        message = ctrl.getMessage();
        for (int i = -1; message && i < 4; ++i)
            if (const karDataBase *const value = message->getParam(i)) {
                EXPECT_EQ(value->getType(), message->getParamType(i));
                EXPECT_LE(value->getText().vstrlen(), text.length());
            }
        EXPECT_LE(ctrl.getGlobalPercent(), 100);
        if (ctrl.getMessageList()->ListAnzahl() > 20)
            ctrl.getMessageList()->ListRemoveAll();
    }
}

TEST_F(RandomRefusals, PoolsStayValid)
{
    constexpr std::uint64_t seed = 43;
    SCOPED_TRACE(seed);
    for (unsigned round = 0; round < 40 && !HasFailure(); ++round) {
        TestRandom random(seed + round);
        karPageMemory fixed(40, 3);
        Pool runs(8, 12);
        struct {
            void *element = nullptr;
            void *run = nullptr;
            int count = 0;
        } places[24];
        for (int step = 0; step < steps / 100 && !HasFailure(); ++step) {
            SCOPED_TRACE(step);
            auto &place = places[random.below(24)];
            const int count = 1 + static_cast<int>(random.below(8));
            const Refusing refusing(random);
            if (place.element) {
                fixed.deleteElement(place.element);
                place.element = nullptr; // one on a chain apart isn't found until the first chain is gone
            } else if ((place.element = fixed.newElement()) != nullptr) {
                std::memset(place.element, 0x5a, 40);
            }
            if (place.run) {
                runs.deleteElement(place.run, place.count);
                place.run = nullptr;
            } else if ((place.run = random.below(2) ? runs.newElement(count) : runs.appendElement(count)) != nullptr) {
                place.count = count;
                std::memset(place.run, 0x5a, static_cast<std::size_t>(8 * count));
                if (count > 2 && random.below(4) == 0)
                    if (void *const shortened = runs.resizeElementLast(place.run, count, count - 1)) {
                        place.run = shortened;
                        place.count = count - 1;
                    }
            }
            EXPECT_TRUE(fixed.isValid());
            EXPECT_TRUE(runs.isValid());
        }
    }
}

TEST_F(RandomRefusals, MatricesStayReadable)
{
    constexpr std::uint64_t seed = 44;
    SCOPED_TRACE(seed);
    TestRandom random(seed);
    karMatrix matrices[4];
    for (int step = 0; step < steps && !HasFailure(); ++step) {
        SCOPED_TRACE(step);
        karMatrix &m = matrices[random.below(4)];
        const karMatrix &other = matrices[random.below(4)];
        const int size = random.between(0, 4);
        {
            const Refusing refusing(random);
            switch (random.below(12)) {
            case 0:
                m = other;
                break;
            case 1:
                m = karMatrix(size);
                break;
            case 2:
                m.SetData(size, size);
                break;
            case 3:
                m *= other;
                break;
            case 4:
                m = m + other;
                break;
            case 5:
                m -= other;
                break;
            case 6:
                m = m.Transpose();
                break;
            case 7:
                m = m.GetRowMatrix(size);
                break;
            case 8:
                m = m.GetColumnMatrix(size);
                break;
            case 9:
                m = -m * 0.5;
                break;
            case 10:
                m = GetTransformationMatrix(1.0, 2.0, 3.0, 0.1, 0.2, 0.3, 0.5, 0.5, 0.5);
                break;
            default:
                m = m.Inverse();
                break;
            }
        }
        m.SetValue(1, 1, 1.0);
        kar3D_Point p(1.0, 2.0, 3.0);
        p *= m;
        double sum = 0.0;
        for (int i = 0; m.GetData() && m.GetRows() > 0 && m.GetColumns() > 0 && i < m.GetRows() * m.GetColumns(); ++i)
            sum += m.GetData()[i];
        EXPECT_EQ(sum, sum);
    }
}
