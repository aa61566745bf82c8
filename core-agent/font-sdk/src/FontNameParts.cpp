#include "FontNameParts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <vector>

namespace {

constexpr size_t kSubsetTagSize = 6;
constexpr int kRegularWeight = 400;
constexpr int kWeightStep = 100;
constexpr int kStepsPerWidth = 2;
constexpr int kStepsForSlope = 3;

/// Whether a word may stand for the style wherever it stands, or only where a style is expected.
enum class WordForm { kFull, kShort };

struct StyleWord {
    std::string_view text;
    WordForm form;
    int weight;  ///< 0: the word does not tell
    int width;   ///< 0: the word does not tell
    bool isSlanted;
};

constexpr StyleWord Weight(std::string_view text, int weight, WordForm form = WordForm::kFull) {
    return {text, form, weight, 0, false};
}
constexpr StyleWord Width(std::string_view text, int width, WordForm form = WordForm::kFull) {
    return {text, form, 0, width, false};
}
constexpr StyleWord Slope(std::string_view text, WordForm form = WordForm::kFull) {
    return {text, form, 0, 0, true};
}

constexpr StyleWord kStyleWords[] = {
    Weight("thin", 100),
    Weight("hairline", 100),
    Weight("th", 100, WordForm::kShort),
    Weight("extralight", 200),
    Weight("ultralight", 200),
    Weight("light", 300),
    Weight("lt", 300, WordForm::kShort),
    Weight("regular", 400),
    Weight("normal", 400),
    Weight("roman", 400),
    Weight("plain", 400),
    Weight("book", 400),
    Weight("rg", 400, WordForm::kShort),
    Weight("reg", 400, WordForm::kShort),
    Weight("medium", 500),
    Weight("md", 500, WordForm::kShort),
    Weight("med", 500, WordForm::kShort),
    Weight("semibold", 600),
    Weight("demibold", 600),
    Weight("demi", 600),
    Weight("sb", 600, WordForm::kShort),
    Weight("bold", 700),
    Weight("bd", 700, WordForm::kShort),
    Weight("extrabold", 800),
    Weight("ultrabold", 800),
    Weight("heavy", 800),
    Weight("hv", 800, WordForm::kShort),
    Weight("black", 900),
    Weight("extrablack", 900),
    Weight("ultrablack", 900),
    Weight("blk", 900, WordForm::kShort),
    Width("ultracondensed", 1),
    Width("extracondensed", 2),
    Width("compressed", 2),
    Width("condensed", 3),
    Width("narrow", 3),
    Width("cond", 3, WordForm::kShort),
    Width("cn", 3, WordForm::kShort),
    Width("semicondensed", 4),
    Width("semicn", 4, WordForm::kShort),
    Width("semiexpanded", 6),
    Width("semiextended", 6),
    Width("expanded", 7),
    Width("extended", 7),
    Width("wide", 7),
    Width("ext", 7, WordForm::kShort),
    Width("ex", 7, WordForm::kShort),
    Width("extraexpanded", 8),
    Width("extraextended", 8),
    Width("ultraexpanded", 9),
    Slope("italic"),
    Slope("itallic"),  // a misspelling that fonts carry
    Slope("oblique"),
    Slope("slanted"),
    Slope("inclined"),
    Slope("kursiv"),
    Slope("it", WordForm::kShort),
    Slope("ital", WordForm::kShort),
    Slope("obl", WordForm::kShort),
};

/// Words that tell of the format or the vendor, or that the font is a variable one.
constexpr std::array<std::string_view, 7> kMarks = {"ps", "mt", "psmt", "std", "pro", "var", "variable"};
/// Only in capitals: otherwise the word is short for "light".
constexpr std::string_view kCapitalMark = "LT";

// Bytes beyond ASCII, which are parts of letters, count as small ones.
bool IsCapital(char character) {
    return character >= 'A' && character <= 'Z';
}
bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}
bool IsSmall(char character) {
    return (character >= 'a' && character <= 'z') || static_cast<unsigned char>(character) >= 0x80;
}

struct Word {
    std::string text;  ///< lower case
    bool isMark = false;
};
using Words = std::vector<Word>;

Word MakeWord(std::string_view spelling) {
    Word word{std::string(spelling), spelling == kCapitalMark};
    for (char& character : word.text)
        character = IsCapital(character) ? static_cast<char>(character - 'A' + 'a') : character;
    word.isMark = word.isMark || std::find(kMarks.begin(), kMarks.end(), word.text) != kMarks.end();
    return word;
}

/// Whether a word ends before `position`: "NeueLTStd75Bold" is Neue, LT, Std, 75, Bold.
bool EndsBefore(std::string_view text, size_t position) {
    const char last = text[position - 1];
    const char next = text[position];
    if (IsDigit(last) != IsDigit(next))
        return true;
    const bool isBeforeSmall = position + 1 < text.size() && IsSmall(text[position + 1]);
    return IsCapital(next) && (IsSmall(last) || (IsCapital(last) && isBeforeSmall));
}

bool IsPartOfWord(char character) {
    return IsCapital(character) || IsDigit(character) || IsSmall(character);
}

Words SplitWords(std::string_view text) {
    Words words;
    size_t start = 0;
    for (size_t position = 0; position < text.size(); ++position) {
        if (!IsPartOfWord(text[position])) {
            start = position + 1;
            continue;
        }
        const bool isLast = position + 1 == text.size() || !IsPartOfWord(text[position + 1]);
        if (isLast || EndsBefore(text, position + 1)) {
            words.push_back(MakeWord(text.substr(start, position + 1 - start)));
            start = position + 1;
        }
    }
    return words;
}

const StyleWord* FindStyleWord(const std::string& text, WordForm longestForm) {
    const auto* found = std::find_if(std::begin(kStyleWords), std::end(kStyleWords), [&](const auto& word) {
        return word.text == text && (word.form == WordForm::kFull || longestForm == WordForm::kShort);
    });
    return found != std::end(kStyleWords) ? found : nullptr;
}

/// The style word that the last words make, two of them ("Semi", "Bold") before one; how many it takes.
const StyleWord* LastStyleWord(const Words& words, WordForm form, size_t& count) {
    for (count = std::min<size_t>(2, words.size()); count > 0; --count) {
        std::string text;
        for (auto word = words.end() - static_cast<std::ptrdiff_t>(count); word != words.end(); ++word)
            text += word->text;
        if (const StyleWord* found = FindStyleWord(text, form))
            return found;
    }
    return nullptr;
}

/// A weight as in style sheets, "700"; 0 for any other word.
int WeightOfNumber(const std::string& text) {
    constexpr int kLightest = 100;
    constexpr int kBlackest = 950;
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWeight = error == std::errc() && end == text.data() + text.size() && number >= kLightest &&
                          number <= kBlackest && number % (kWeightStep / 2) == 0;
    return isWeight ? number : 0;
}

void Apply(const StyleWord& word, FontStyle& style) {
    // A regular weight says nothing against one that the name tells elsewhere: "Arial Black Regular".
    if (word.weight != 0 && word.weight != kRegularWeight)
        style.weight = word.weight;
    if (word.width != 0)
        style.width = word.width;
    style.isSlanted = style.isSlanted || word.isSlanted;
}

/// Takes the words of a style, and whatever stands between them. False when there is no style word.
bool TakeStyle(Words words, FontStyle& style) {
    bool isStyle = false;
    while (!words.empty()) {
        size_t count = 0;
        if (const StyleWord* word = LastStyleWord(words, WordForm::kShort, count)) {
            Apply(*word, style);
            isStyle = true;
        } else {
            const Word& other = words.back();
            if (const int weight = WeightOfNumber(other.text)) {
                style.weight = weight;
                isStyle = true;
            } else if (!other.isMark && !IsDigit(other.text.front())) {  // numbers tell the style once more
                style.others.insert(0, other.text);
            }
            count = 1;
        }
        words.resize(words.size() - count);
    }
    return isStyle;
}

void DropMarks(Words& words) {
    if (words.size() > 1)
        words.erase(
            std::remove_if(words.begin() + 1, words.end(), [](const Word& word) { return word.isMark; }),
            words.end());
}

/// Takes the style words off the end of a family's name, of which one word stays.
void TakeTrailingStyle(Words& family, FontStyle& style) {
    size_t count = 0;
    DropMarks(family);
    while (const StyleWord* word = LastStyleWord(family, WordForm::kFull, count)) {
        if (count >= family.size())
            return;
        Apply(*word, style);
        family.resize(family.size() - count);
    }
}

std::string Join(const Words& words) {
    std::string text;
    for (const Word& word : words)
        text += word.text;
    return text;
}

FontNameParts PartsOf(Words family, const Words& style) {
    FontNameParts parts;
    Words all = family;
    all.insert(all.end(), style.begin(), style.end());
    parts.plainName = Join(all);
    DropMarks(all);
    parts.wholeName = Join(all);
    TakeTrailingStyle(family, parts.style);
    TakeStyle(style, parts.style);
    parts.familyName = Join(family);
    return parts;
}

std::string_view WithoutSubsetTag(std::string_view name) {
    const bool isTagged = name.size() > kSubsetTagSize && name[kSubsetTagSize] == '+' &&
                          std::all_of(name.begin(), name.begin() + kSubsetTagSize, IsCapital);
    return isTagged ? name.substr(kSubsetTagSize + 1) : name;
}

}  // namespace

int StyleDistance(const FontStyle& left, const FontStyle& right) {
    return std::abs(left.weight - right.weight) / kWeightStep +
           std::abs(left.width - right.width) * kStepsPerWidth +
           (left.isSlanted != right.isSlanted ? kStepsForSlope : 0) + (left.others != right.others ? 1 : 0);
}

std::string StyleText(const FontStyle& style) {
    constexpr const char* kWeights[] = {"Thin",     "ExtraLight", "Light",     "Regular", "Medium",
                                        "SemiBold", "Bold",       "ExtraBold", "Black"};
    constexpr const char* kWidths[] = {
        "UltraCondensed", "ExtraCondensed", "Condensed",     "SemiCondensed", "",
        "SemiExpanded",   "Expanded",       "ExtraExpanded", "UltraExpanded"};
    constexpr int kRegularWidth = 5;
    const auto weight = static_cast<size_t>(std::clamp(style.weight / kWeightStep, 1, 9) - 1);
    const auto width = static_cast<size_t>(std::clamp(style.width, 1, 9) - 1);
    const bool saysMore = style.width != kRegularWidth || style.isSlanted;
    std::string text = style.weight == kRegularWeight && saysMore ? "" : kWeights[weight];
    for (const std::string& word :
         {std::string(kWidths[width]), std::string(style.isSlanted ? "Italic" : ""), style.others})
        text += (text.empty() || word.empty() ? "" : " ") + word;
    return text;
}

FontNameParts ParsePostScriptName(std::string_view name) {
    name = WithoutSubsetTag(name);
    const size_t separator = name.find_last_of("-,");
    FontStyle ignored;
    if (separator == std::string_view::npos || !TakeStyle(SplitWords(name.substr(separator + 1)), ignored))
        return PartsOf(SplitWords(name), {});
    return PartsOf(SplitWords(name.substr(0, separator)), SplitWords(name.substr(separator + 1)));
}

FontNameParts ParseFamilyAndStyle(std::string_view family, std::string_view style) {
    return PartsOf(SplitWords(family), SplitWords(style));
}
