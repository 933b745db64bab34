// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/HTMLImport.h>

#include <ZORPlatform/Foundation/HTMLNestingInternal.h>
#include <ZORPlatform/Foundation/HTMLStandInsInternal.h>
#include <ZORPlatform/Foundation/NSString.h>
#include <ZORPlatform/Foundation/Text.h>
#include <ZORPlatform/Foundation/Utf.h>

#include <gumbo.h>

#include <csetjmp>
#include <ctime>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <span>
#include <utility>
#include <vector>

namespace ZORPlatform {
namespace {

constexpr char16_t kLineSeparator = 0x2028;

// The parser's memory, and the end of its patience: the parser never looks for a failed allocation, and to free a deep
// document it would need as deep a stack.
class ParserArena {
public:
    explicit ParserArena(std::size_t markupBytes)
        : bytesLeft_(200 * markupBytes + (1U << 20)),
          secondsLimit_(processorSeconds() + 1 + 5e-6 * static_cast<double>(markupBytes)),
          nextChunkBytes_(std::clamp<std::size_t>(32 * markupBytes, kFirstChunkBytes, kLargestChunkBytes)) {}
    ~ParserArena() {
        while (chunks_ != nullptr) std::free(std::exchange(chunks_, chunks_->previous));
    }
    ParserArena(const ParserArena&) = delete;
    ParserArena& operator=(const ParserArena&) = delete;

    /// Where `allocate` jumps to when the budget is spent. No frame between may need a destructor.
    std::jmp_buf& refusal() noexcept { return refusal_; }

    void* allocate(std::size_t bytes) noexcept {
        constexpr std::size_t kAlignment = alignof(std::max_align_t);
        bytes = (bytes + kAlignment - 1) & ~(kAlignment - 1);
        if (bytes > bytesLeft_ || isOutOfTime()) std::longjmp(refusal_, 1);
        bytesLeft_ -= bytes;
        if (bytes > room_.size() && !addChunk(bytes)) std::longjmp(refusal_, 1);
        std::byte* const memory = room_.data();
        room_ = room_.subspan(bytes);
        return memory;
    }

private:
    struct alignas(std::max_align_t) Chunk {
        Chunk* previous;
    };

    static constexpr std::size_t kFirstChunkBytes = 1U << 14;
    static constexpr std::size_t kLargestChunkBytes = 1U << 20;

    static double processorSeconds() noexcept {
        std::timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
    }

    // Asked now and then only: asking costs more than most allocations.
    [[nodiscard]] bool isOutOfTime() noexcept {
        return (++allocations_ & 0xFFF) == 0 && processorSeconds() > secondsLimit_;
    }

    // Without exceptions: the parser's frames are not made for them.
    [[nodiscard]] bool addChunk(std::size_t bytes) noexcept {
        const std::size_t size = std::max(bytes, nextChunkBytes_);
        nextChunkBytes_ = std::min(2 * size, kLargestChunkBytes);
        void* const memory = std::malloc(sizeof(Chunk) + size);
        if (memory == nullptr) return false;
        chunks_ = new (memory) Chunk{chunks_};
        room_ = {reinterpret_cast<std::byte*>(chunks_ + 1), size};
        return true;
    }

    std::size_t bytesLeft_;
    double secondsLimit_;
    std::size_t nextChunkBytes_;
    std::size_t allocations_ = 0;
    std::span<std::byte> room_;
    Chunk* chunks_ = nullptr;
    std::jmp_buf refusal_{};
};

// The document, or null when the arena's budget does not suffice for it. Lives as long as the arena.
const GumboNode* parse(std::string_view markup, ParserArena& arena) {
    GumboOptions options = kGumboDefaultOptions;
    options.userdata = &arena;
    options.allocator = [](void* userdata, std::size_t bytes) {
        return static_cast<ParserArena*>(userdata)->allocate(bytes);
    };
    options.deallocator = [](void*, void*) {};
    options.max_errors = 0;
    if (setjmp(arena.refusal()) != 0) return nullptr;
    return gumbo_parse_with_options(&options, markup.data(), markup.size())->document;
}

enum class Display { isInline, block, paragraph, listItem, list, body, none };

Display displayOf(GumboTag tag) {
    switch (tag) {
        case GUMBO_TAG_BODY:
        case GUMBO_TAG_HTML:
            return Display::body;
        case GUMBO_TAG_LI:
            return Display::listItem;
        case GUMBO_TAG_UL:
        case GUMBO_TAG_OL:
        case GUMBO_TAG_MENU:
        case GUMBO_TAG_DIR:
            return Display::list;
        case GUMBO_TAG_P:
        case GUMBO_TAG_H1:
        case GUMBO_TAG_H2:
        case GUMBO_TAG_H3:
        case GUMBO_TAG_H4:
        case GUMBO_TAG_H5:
        case GUMBO_TAG_H6:
        case GUMBO_TAG_DL:
        case GUMBO_TAG_DT:
        case GUMBO_TAG_DD:
        case GUMBO_TAG_TABLE:
        case GUMBO_TAG_CAPTION:
        case GUMBO_TAG_THEAD:
        case GUMBO_TAG_TBODY:
        case GUMBO_TAG_TFOOT:
        case GUMBO_TAG_TR:
        case GUMBO_TAG_TD:
        case GUMBO_TAG_TH:
            return Display::paragraph;
        case GUMBO_TAG_ADDRESS:
        case GUMBO_TAG_ARTICLE:
        case GUMBO_TAG_ASIDE:
        case GUMBO_TAG_BLOCKQUOTE:
        case GUMBO_TAG_CENTER:
        case GUMBO_TAG_DETAILS:
        case GUMBO_TAG_DIV:
        case GUMBO_TAG_FIELDSET:
        case GUMBO_TAG_FIGCAPTION:
        case GUMBO_TAG_FIGURE:
        case GUMBO_TAG_FOOTER:
        case GUMBO_TAG_FORM:
        case GUMBO_TAG_HEADER:
        case GUMBO_TAG_HGROUP:
        case GUMBO_TAG_HR:
        case GUMBO_TAG_LEGEND:
        case GUMBO_TAG_LISTING:
        case GUMBO_TAG_MAIN:
        case GUMBO_TAG_NAV:
        case GUMBO_TAG_OPTGROUP:
        case GUMBO_TAG_OPTION:
        case GUMBO_TAG_PLAINTEXT:
        case GUMBO_TAG_PRE:
        case GUMBO_TAG_SECTION:
        case GUMBO_TAG_SUMMARY:
        case GUMBO_TAG_XMP:
            return Display::block;
        case GUMBO_TAG_AREA:
        case GUMBO_TAG_AUDIO:
        case GUMBO_TAG_BASE:
        case GUMBO_TAG_BASEFONT:
        case GUMBO_TAG_CANVAS:
        case GUMBO_TAG_COL:
        case GUMBO_TAG_COLGROUP:
        case GUMBO_TAG_DATALIST:
        case GUMBO_TAG_FRAMESET:
        case GUMBO_TAG_HEAD:
        case GUMBO_TAG_IFRAME:
        case GUMBO_TAG_LINK:
        case GUMBO_TAG_META:
        case GUMBO_TAG_NOEMBED:
        case GUMBO_TAG_NOFRAMES:
        case GUMBO_TAG_PARAM:
        case GUMBO_TAG_RP:
        case GUMBO_TAG_SCRIPT:
        case GUMBO_TAG_STYLE:
        case GUMBO_TAG_TEMPLATE:
        case GUMBO_TAG_TITLE:
        case GUMBO_TAG_VIDEO:
            return Display::none;
        default:
            return Display::isInline;
    }
}

std::span<GumboNode* const> children(const GumboNode& node) {
    const GumboVector& list = node.type == GUMBO_NODE_DOCUMENT ? node.v.document.children : node.v.element.children;
    return {reinterpret_cast<GumboNode**>(list.data), list.length};
}

bool isElement(const GumboNode& node, GumboTag tag) {
    return node.type == GUMBO_NODE_ELEMENT && node.v.element.tag == tag;
}

std::string_view attribute(const GumboElement& element, const char* name) {
    const GumboAttribute* found = gumbo_get_attribute(&element.attributes, name);
    return found != nullptr ? found->value : std::string_view();
}

bool isAsciiSpace(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view trimmedAscii(std::string_view text) noexcept {
    while (!text.empty() && isAsciiSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isAsciiSpace(text.back())) text.remove_suffix(1);
    return text;
}

// `lowerCase` is what it says; `text` may be in any case.
bool equalsIgnoringCase(std::string_view text, std::string_view lowerCase) noexcept {
    return std::equal(text.begin(), text.end(), lowerCase.begin(), lowerCase.end(), [](char left, char right) {
        return (left >= 'A' && left <= 'Z' ? static_cast<char>(left + 0x20) : left) == right;
    });
}

// What the element's own style says of a property, without "!important": the last declaration counts.
std::string_view declaredStyle(const GumboElement& element, std::string_view property) {
    std::string_view style = attribute(element, "style");
    std::string_view value;
    while (!style.empty()) {
        const std::string_view declaration = style.substr(0, style.find(';'));
        style.remove_prefix(std::min(declaration.size() + 1, style.size()));
        const std::size_t colon = declaration.find(':');
        if (colon == std::string_view::npos) continue;
        if (!equalsIgnoringCase(trimmedAscii(declaration.substr(0, colon)), property)) continue;
        const std::string_view declared = declaration.substr(colon + 1);
        value = trimmedAscii(declared.substr(0, declared.find('!')));
    }
    return value;
}

Display displayOf(const GumboElement& element) {
    if (gumbo_get_attribute(&element.attributes, "hidden") != nullptr ||
        equalsIgnoringCase(declaredStyle(element, "display"), "none")) {
        return Display::none;
    }
    return displayOf(element.tag);
}

bool keepsWhiteSpace(const GumboElement& element, bool parentKeeps) {
    switch (element.tag) {
        case GUMBO_TAG_PRE:
        case GUMBO_TAG_LISTING:
        case GUMBO_TAG_PLAINTEXT:
        case GUMBO_TAG_TEXTAREA:
        case GUMBO_TAG_XMP:
            return true;
        default:
            break;
    }
    const std::string_view style = declaredStyle(element, "white-space");
    if (style.empty()) return parentKeeps;
    return equalsIgnoringCase(style.substr(0, 3), "pre");
}

// Whether an input element shows its value as text.
bool isTextField(const GumboElement& element) {
    constexpr std::array<std::string_view, 7> kTextTypes{"", "text", "search", "tel", "url", "email", "number"};
    const std::string_view type = attribute(element, "type");
    return std::any_of(kTextTypes.begin(), kTextTypes.end(),
                       [type](std::string_view text) { return equalsIgnoringCase(type, text); });
}

// The number that an attribute gives, in the range of what a list can count.
std::int64_t numberOr(std::string_view text, std::int64_t otherwise) {
    const bool hasDigit = std::any_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    return hasDigit ? intValue(utf16(text)) : otherwise;
}

constexpr bool collapses(char16_t unit) noexcept {
    return unit == u' ' || unit == u'\t' || unit == u'\r' || unit == u'\n' || unit == u'\f' || unit == 0x200B;
}

// The text that grows, and what its end allows.
class PlainText {
public:
    [[nodiscard]] std::size_t size() const noexcept { return text_.size(); }

    void append(std::u16string_view text) {
        if (text.empty()) return;
        text_ += text;
        isSoft_ = false;
    }

    void appendCollapsed(std::u16string_view text) {
        for (std::size_t at = 0; at < text.size();) {
            if (collapses(text[at])) {
                appendSpace();
                while (at < text.size() && collapses(text[at])) ++at;
            } else {
                const std::size_t begin = at;
                while (at < text.size() && !collapses(text[at])) ++at;
                append(text.substr(begin, at - begin));
            }
        }
    }

    /// Appends a line end whatever stands before it.
    void appendBreak(char16_t lineEnd) {
        text_.push_back(lineEnd);
        isSoft_ = true;
    }

    /// Ends the line that has been begun, if any; a space or break at its end gives way.
    void endLine(char16_t lineEnd) {
        if (isSoft_ && (text_.back() == u' ' || text_.back() == kLineSeparator)) {
            text_.back() = lineEnd;
        } else if (!text_.empty() && text_.back() != u'\n') {
            appendBreak(lineEnd);
        }
    }

    void dropSoftSpace() {
        if (!isSoft_ || text_.back() != u' ') return;
        text_.pop_back();
        isSoft_ = false;
    }

    /// Puts a text in front of what will be appended. It plays no part in the rules for what comes behind.
    void addPrefix(std::u16string prefix) { prefixes_.push_back({text_.size(), std::move(prefix)}); }

    [[nodiscard]] std::u16string finish() && {
        if (prefixes_.empty()) return std::move(text_);
        std::u16string result;
        std::size_t copied = 0;
        for (const auto& [position, prefix] : prefixes_) {
            result.append(text_, copied, position - copied).append(prefix);
            copied = position;
        }
        result.append(text_, copied);
        return result;
    }

private:
    struct Prefix {
        std::size_t position;
        std::u16string text;
    };

    void appendSpace() {
        if (text_.empty() || isSoft_ || text_.back() == u'\t' || isNewline(text_.back())) return;
        text_.push_back(u' ');
        isSoft_ = true;
    }

    std::u16string text_;
    bool isSoft_ = false;  // The text ends in collapsed white space or in a break; it is not empty.
    std::vector<Prefix> prefixes_;
};

// Goes through a document without recursion: its depth is the markup's to choose.
class Reader {
public:
    explicit Reader(const HTMLStandIns& standIns) : standIns_(standIns) {}

    [[nodiscard]] std::u16string read(const GumboNode& document) && {
        open_.push_back({.node = &document});
        while (!open_.empty()) {
            if (const GumboNode* child = nextChild()) {
                enter(*child);
            } else {
                leave(open_.back());
                open_.pop_back();
            }
        }
        return std::move(text_).finish();
    }

private:
    struct OpenNode {
        const GumboNode* node;
        Display display = Display::isInline;
        bool keepsWhiteSpace = false;
        bool isAtFeet = false;
        std::size_t nextChild = 0;
        std::size_t textBegin = 0;
    };

    struct OpenList {
        bool isOrdered;
        std::int64_t nextNumber;
    };

    // The feet of a table come behind its other children.
    const GumboNode* nextChild() {
        OpenNode& parent = open_.back();
        const std::span<GumboNode* const> all = children(*parent.node);
        const bool isTable = isElement(*parent.node, GUMBO_TAG_TABLE);
        for (;;) {
            for (; parent.nextChild < all.size(); ++parent.nextChild) {
                const GumboNode& child = *all[parent.nextChild];
                if (isTable && isElement(child, GUMBO_TAG_TFOOT) != parent.isAtFeet) continue;
                ++parent.nextChild;
                return &child;
            }
            if (!isTable || parent.isAtFeet) return nullptr;
            parent.isAtFeet = true;
            parent.nextChild = 0;
        }
    }

    void enter(const GumboNode& node) {
        switch (node.type) {
            case GUMBO_NODE_TEXT:
            case GUMBO_NODE_CDATA:
            case GUMBO_NODE_WHITESPACE:
                enterText(node.v.text.text);
                break;
            case GUMBO_NODE_ELEMENT:
                enterElement(node);
                break;
            default:
                break;
        }
    }

    void enterText(std::string_view utf8) {
        const std::u16string text = standIns_.text(utf8);
        if (open_.back().keepsWhiteSpace) {
            text_.append(text);
        } else {
            text_.appendCollapsed(text);
        }
    }

    void enterElement(const GumboNode& node) {
        const GumboElement& element = node.v.element;
        const Display display = displayOf(element);
        if (display == Display::none) return;
        if (element.tag == GUMBO_TAG_BR) {
            text_.appendBreak(isBrokenSoftly(*open_.back().node) ? kLineSeparator : u'\n');
            return;
        }
        if (element.tag == GUMBO_TAG_INPUT) {
            if (isTextField(element)) text_.append(standIns_.text(attribute(element, "value")));
            return;
        }
        if (display != Display::isInline) text_.endLine(u'\n');
        if (display == Display::list) {
            lists_.push_back({element.tag == GUMBO_TAG_OL, numberOr(attribute(element, "start"), 1)});
        } else if (display == Display::listItem) {
            ++openItems_;
            if (!lists_.empty()) text_.addPrefix(itemPrefix(element));
        } else if (element.tag == GUMBO_TAG_Q) {
            text_.append(quotes_++ % 2 == 0 ? u"\u201C" : u"\u2018");
        }
        open_.push_back({.node = &node,
                         .display = display,
                         .keepsWhiteSpace = keepsWhiteSpace(element, open_.back().keepsWhiteSpace),
                         .textBegin = text_.size()});
    }

    void leave(const OpenNode& open) {
        switch (open.display) {
            case Display::isInline:
                if (isElement(*open.node, GUMBO_TAG_Q)) text_.append(--quotes_ % 2 == 0 ? u"\u201D" : u"\u2019");
                return;
            case Display::body:
                text_.dropSoftSpace();
                return;
            case Display::list:
                lists_.pop_back();
                break;
            case Display::listItem:
                --openItems_;
                break;
            default:
                break;
        }
        const char16_t lineEnd = open.display == Display::block && openItems_ > 0 ? kLineSeparator : u'\n';
        if (text_.size() == open.textBegin) {
            text_.appendBreak(lineEnd);
        } else {
            text_.endLine(lineEnd);
        }
    }

    // Whether a <br> directly inside this element does not end its paragraph.
    static bool isBrokenSoftly(const GumboNode& parent) {
        if (parent.type != GUMBO_NODE_ELEMENT) return false;
        switch (parent.v.element.tag) {
            case GUMBO_TAG_P:
            case GUMBO_TAG_LI:
            case GUMBO_TAG_H1:
            case GUMBO_TAG_H2:
            case GUMBO_TAG_H3:
            case GUMBO_TAG_H4:
            case GUMBO_TAG_H5:
            case GUMBO_TAG_H6:
                return true;
            default:
                return false;
        }
    }

    std::u16string itemPrefix(const GumboElement& item) {
        constexpr std::array<char16_t, 3> kMarks{0x2022, 0x25E6, 0x25AA};
        OpenList& list = lists_.back();
        std::u16string prefix(1, u'\t');
        if (list.isOrdered) {
            const std::int64_t number = numberOr(attribute(item, "value"), list.nextNumber);
            list.nextNumber = number + 1;
            prefix += decimalText(number);
            prefix += u'.';
        } else {
            prefix += kMarks[std::min(lists_.size(), kMarks.size()) - 1];
        }
        prefix += u'\t';
        return prefix;
    }

    const HTMLStandIns& standIns_;
    PlainText text_;
    std::vector<OpenNode> open_;
    std::vector<OpenList> lists_;
    std::size_t openItems_ = 0;
    std::size_t quotes_ = 0;
};

// The parser puts text that a form ends with behind the form, unless anything stands between it and the end tag: a
// comment does. Empty without such forms.
std::string withPartedForms(std::string_view markup, std::span<const std::size_t> formEnds) {
    std::string parted;
    if (formEnds.empty()) return parted;
    std::size_t copied = 0;
    for (const std::size_t end : formEnds) {
        parted.append(markup, copied, end - copied).append("<!---->");
        copied = end;
    }
    return parted.append(markup, copied);
}

}  // namespace

std::optional<std::u16string> plainTextFromHTML(std::string_view markup) {
    std::vector<std::size_t> formEnds;
    if (isNestedTooDeep(markup, &formEnds)) return std::nullopt;
    const std::string parted = withPartedForms(markup, formEnds);
    const HTMLStandIns standIns(parted.empty() ? markup : parted);
    ParserArena arena(standIns.markup().size());
    const GumboNode* document = parse(standIns.markup(), arena);
    if (document == nullptr) return std::nullopt;
    return Reader(standIns).read(*document);
}

}  // namespace ZORPlatform
