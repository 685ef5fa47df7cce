// SPDX-License-Identifier: MIT
#include "platform/d3dx9/font/text_layout.hpp"

namespace VornPlatform {

namespace {

constexpr int TabBlanks = 8;

struct Sequence {
    int more;         // bytes behind the first
    char32_t value;   // of the first
    char32_t minimum; // what fewer bytes could have held is badly written
};

// more: -1 for a byte that begins no character.
Sequence SequenceOf(unsigned char first) {
    if (first < 0x80)
        return {0, first, 0};
    if (first >= 0xC2 && first < 0xE0)
        return {1, first & 0x1Fu, 0x80};
    if (first >= 0xE0 && first < 0xF0)
        return {2, first & 0x0Fu, 0x800};
    if (first >= 0xF0 && first < 0xF5)
        return {3, first & 0x07u, 0x10000};
    return {-1, 0, 0};
}

class Layout {
public:
    Layout(const TextRules& rules, const std::function<CharacterSize(char32_t)>& size)
        : mRules(rules), mSize(size), mBlank(size(U' ').advance) {}

    void Add(char32_t character) {
        if (character == U'\n') {
            if (!mRules.singleLine)
                EndLine();
        } else if (character == U' ') {
            AddBlank(mBlank);
        } else if (character == U'\t') {
            const std::int64_t stop = std::int64_t(TabBlanks) * mBlank;
            AddBlank(stop > 0 ? stop - mPen % stop : 0);
        } else if (character >= U' ' && character != 0x7F) {
            AddShown(character);
        }
    }

    void EndLine() {
        mLine.width = mPen + mAfter;
        mLines.push_back(std::move(mLine));
        mLine = {};
        mPen = mWordX = mBeforeBlanks = 0;
        mWord = 0;
        mAfter = 0;
    }

    std::vector<TextLine> Take() { return std::move(mLines); }

private:
    void AddBlank(std::int64_t width) {
        // A break in the middle of several blanks leaves all of them out.
        if (mPen != mWordX)
            mBeforeBlanks = mPen + mAfter;
        mPen += width;
        mWord = mLine.characters.size();
        mWordX = mPen;
        mAfter = 0;
    }

    void AddShown(char32_t character) {
        const CharacterSize size = mSize(character);
        if (mPen + size.advance + size.after > mRules.breakWidth && mWord > 0)
            BreakBeforeWord();
        // What begins a line begins where the line does.
        if (mPen == 0)
            mPen = size.before;
        if (mLine.characters.size() == mWord)
            mWordBefore = size.before;
        mLine.characters.push_back({character, mPen});
        mPen += size.advance;
        mAfter = size.after;
    }

    void BreakBeforeWord() {
        const auto word = mLine.characters.begin() + static_cast<std::ptrdiff_t>(mWord);
        TextLine next = {{word, mLine.characters.end()}, 0};
        const std::int64_t shift = next.characters.empty() ? mWordX : mWordX - mWordBefore;
        const std::int64_t pen = mPen - shift;
        for (PlacedCharacter& placed : next.characters)
            placed.x -= shift;
        mLine.characters.erase(word, mLine.characters.end());
        mPen = mBeforeBlanks;
        mAfter = 0;
        EndLine();
        mLine = std::move(next);
        mPen = pen;
    }

    const TextRules& mRules;
    const std::function<CharacterSize(char32_t)>& mSize;
    const int mBlank;

    std::vector<TextLine> mLines;
    TextLine mLine;
    std::int64_t mPen = 0;
    int mAfter = 0; // of the last character
    // Where the last word begins and what it has before it, and where what stands before it ends.
    std::size_t mWord = 0;
    std::int64_t mWordX = 0, mBeforeBlanks = 0;
    int mWordBefore = 0;
};

} // namespace

char32_t TakeCharacter(std::string_view& text) {
    const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const Sequence sequence = SequenceOf(byte(0));
    char32_t character = sequence.value;
    std::size_t length = 1;
    for (int i = 0; i < sequence.more; ++i, ++length) {
        if (length == text.size() || (byte(length) & 0xC0) != 0x80) {
            text.remove_prefix(length);
            return Replacement;
        }
        character = character << 6 | (byte(length) & 0x3Fu);
    }
    text.remove_prefix(length);
    const bool surrogate = character >= 0xD800 && character < 0xE000;
    const bool sound =
        sequence.more >= 0 && character >= sequence.minimum && !surrogate && character <= 0x10FFFF;
    return sound ? character : Replacement;
}

std::vector<TextLine> LayOut(std::string_view text, const TextRules& rules,
                             const std::function<CharacterSize(char32_t)>& size) {
    if (text.empty())
        return {};
    Layout layout(rules, size);
    while (!text.empty())
        layout.Add(TakeCharacter(text));
    layout.EndLine();
    return layout.Take();
}

} // namespace VornPlatform
