#include "option_matrix.h"

#include <set>
#include <tuple>

namespace codegentest {

using esttform::DataType;
using esttform::Layout;
using esttform::Method;
using esttform::Sampling;
using esttform::TransformType;

namespace {

struct Option {
    const char* name;
    int valueNum;
    void (*apply)(MatrixSetting& setting, int value);
    bool needsRobust = false;  ///< a setting that is not robust gives the same code with all its values
};

/// Points of the types with ids from 2 have TForm in either precision, the two others in their own.
void applyTypes(MatrixSetting& setting, int value)
{
    setting.settings.pointsType = static_cast<DataType>(value < 2 ? value : 2 + (value - 2) / 2);
    setting.settings.tformType = static_cast<DataType>(value % 2);
}

const Option OPTIONS[] = {
    {"types", 14, applyTypes},
    {"transformation", 3, [](MatrixSetting& s, int value) { s.settings.type = static_cast<TransformType>(value + 1); }},
    {"layout", 2, [](MatrixSetting& s, int value) { s.settings.layout = static_cast<Layout>(value); }},
    {"robust", 2, [](MatrixSetting& s, int value) { s.settings.isRobust = value == 1; }},
    {"method", 2, [](MatrixSetting& s, int value) { s.settings.method = static_cast<Method>(value + 1); }, true},
    {"sampling", 2, [](MatrixSetting& s, int value) { s.settings.sampling = static_cast<Sampling>(value); }, true},
    {"refinement", 2, [](MatrixSetting& s, int value) { s.settings.isRefineIteratively = value == 1; }, true},
    {"inlier output", 2, [](MatrixSetting& s, int value) { s.settings.isOutputInliers = value == 1; }, true},
    {"confidence", 2, [](MatrixSetting& s, int value) { if (value == 0) s.settings.confidence.reset(); }, true},
    {"break", 2, [](MatrixSetting& s, int value) { if (value == 1) s.settings.stopAtInliers = 90.0; }, true},
    {"variable size", 2, [](MatrixSetting& s, int value) { s.isVariable = value == 1; }},
};
constexpr int OPTION_NUM = static_cast<int>(sizeof OPTIONS / sizeof OPTIONS[0]);
constexpr int ROBUST = 3;

/// Two options, the first below the second, with their values.
using Meeting = std::tuple<int, int, int, int>;

Meeting meeting(int optionA, int valueA, int optionB, int valueB)
{
    return optionA < optionB ? Meeting(optionA, optionB, valueA, valueB) : Meeting(optionB, optionA, valueB, valueA);
}

/// Whether two options are a meeting in a setting with this value of the option robust.
bool doMeet(int optionA, int optionB, int robust)
{
    return robust != 0 || !(OPTIONS[optionA].needsRobust || OPTIONS[optionB].needsRobust);
}

std::set<Meeting> allMeetings()
{
    std::set<Meeting> meetings;
    for (int a = 0; a < OPTION_NUM; ++a)
        for (int b = a + 1; b < OPTION_NUM; ++b)
            for (int i = 0; i < OPTIONS[a].valueNum; ++i)
                for (int j = 0; j < OPTIONS[b].valueNum; ++j)
                    if (doMeet(a, b, a == ROBUST ? i : b == ROBUST ? j : 1))
                        meetings.insert(meeting(a, i, b, j));
    return meetings;
}

constexpr int OPEN = -1;

/// Open options of which this value of an option has yet to meet a value, and chosen values that it has yet to meet.
std::size_t gainOf(const std::vector<int>& values, int option, int value, const std::set<Meeting>& left)
{
    std::size_t gain = 0;
    for (int other = 0; other < OPTION_NUM; ++other)
        if (other != option && values[std::size_t(other)] != OPEN && doMeet(option, other, values[ROBUST]))
            gain += left.count(meeting(option, value, other, values[std::size_t(other)]));
    return gain;
}

/// Begins with a meeting that is left, then gives each option the value with the most new meetings; among equals, turns mix
/// them as the bits of a number.
std::vector<int> nextValues(const std::set<Meeting>& left, int turn)
{
    std::vector<int> values(OPTION_NUM, OPEN);
    const auto& [a, b, valueA, valueB] = *left.begin();
    values[std::size_t(a)] = valueA;
    values[std::size_t(b)] = valueB;
    if (OPTIONS[a].needsRobust || OPTIONS[b].needsRobust)
        values[ROBUST] = 1;
    for (int option = 0; option < OPTION_NUM; ++option) {
        int& chosen = values[std::size_t(option)];
        if (chosen != OPEN)
            continue;
        std::size_t bestGain = 0;
        for (int k = 0; k < OPTIONS[option].valueNum; ++k) {
            const int value = (k + (turn >> option % 4)) % OPTIONS[option].valueNum;
            const std::size_t gain = gainOf(values, option, value, left);
            if (k > 0 && gain <= bestGain)
                continue;
            bestGain = gain;
            chosen = value;
        }
    }
    return values;
}

}  // namespace

std::vector<MatrixSetting> optionMatrix()
{
    std::vector<MatrixSetting> matrix;
    for (std::set<Meeting> left = allMeetings(); !left.empty();) {
        const std::vector<int> values = nextValues(left, static_cast<int>(matrix.size()));
        MatrixSetting setting;
        for (int a = 0; a < OPTION_NUM; ++a) {
            OPTIONS[a].apply(setting, values[std::size_t(a)]);
            setting.text += std::string(OPTIONS[a].name) + " " + std::to_string(values[std::size_t(a)]) + ", ";
            for (int b = a + 1; b < OPTION_NUM; ++b)
                if (doMeet(a, b, values[ROBUST]))
                    left.erase(meeting(a, values[std::size_t(a)], b, values[std::size_t(b)]));
        }
        matrix.push_back(setting);
    }
    return matrix;
}

}  // namespace codegentest
