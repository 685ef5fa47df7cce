// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/clean_text.hpp"

#include "platform/d3dx9/effect/effect_source.hpp"

namespace VornPlatform {

namespace {

class Cleaner {
public:
    Cleaner(std::string_view text, const std::string& file) : text_(text), file_(file) {}

    std::string run() {
        if (startsWith("\xef\xbb\xbf"))
            at_ += 3;
        clean_.reserve(text_.size());
        while (at_ < text_.size())
            step();
        return std::move(clean_);
    }

private:
    bool startsWith(std::string_view what) const { return text_.substr(at_, what.size()) == what; }
    // Length of the line end here: "\n", "\r\n" or "\r"; 0 for none.
    std::size_t lineEnd(std::size_t at) const {
        if (at >= text_.size())
            return 0;
        if (text_[at] == '\r')
            return at + 1 < text_.size() && text_[at + 1] == '\n' ? 2 : 1;
        return text_[at] == '\n';
    }
    // Goes over a joined line. Its end comes behind the whole line, so that the count is right.
    bool skipJoint() {
        const std::size_t length = text_[at_] == '\\' ? lineEnd(at_ + 1) : 0;
        if (length == 0)
            return false;
        at_ += 1 + length;
        ++line_;
        ++owed_;
        return true;
    }

    void step() {
        if (const std::size_t length = lineEnd(at_)) {
            at_ += length;
            endLine();
        } else if (skipJoint())
            return;
        else if (startsWith("//"))
            skipLineComment();
        else if (startsWith("/*"))
            skipComment();
        else if (text_[at_] == '"')
            copyString();
        else
            copy();
    }

    void copy() {
        const char c = text_[at_++];
        clean_ += c;
        if (c == '#' && blank_)
            isDirective_ = true;
        blank_ = blank_ && (c == ' ' || c == '\t');
    }

    void endLine() {
        ++line_;
        clean_.append(1 + owed_, '\n');
        owed_ = 0;
        blank_ = true;
        isDirective_ = false;
    }

    void skipLineComment() {
        clean_ += ' ';
        while (at_ < text_.size() && lineEnd(at_) == 0)
            if (!skipJoint())
                ++at_;
    }

    void skipComment() {
        const int start = line_;
        at_ += 2;
        clean_ += ' ';
        while (!startsWith("*/")) {
            if (at_ >= text_.size())
                throw EffectError({file_, start}, "this comment has no end");
            const std::size_t length = lineEnd(at_);
            at_ += length ? length : 1;
            if (length == 0)
                continue;
            ++line_;
            // A directive goes on behind the comment.
            if (isDirective_)
                ++owed_;
            else
                clean_ += '\n';
        }
        at_ += 2;
    }

    // A string ends with its line at the latest; who needs it says so.
    void copyString() {
        copy();
        while (at_ < text_.size() && lineEnd(at_) == 0) {
            if (skipJoint())
                continue;
            const char c = text_[at_];
            copy();
            if (c == '"')
                return;
            if (c == '\\' && at_ < text_.size() && lineEnd(at_) == 0)
                copy();
        }
    }

    std::string_view text_;
    const std::string& file_;
    std::string clean_;
    std::size_t at_ = 0, owed_ = 0;
    int line_ = 1;
    bool blank_ = true, isDirective_ = false;
};

} // namespace

std::string CleanText(std::string_view text, const std::string& file) {
    return Cleaner(text, file).run();
}

} // namespace VornPlatform
