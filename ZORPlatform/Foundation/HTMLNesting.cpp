// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/HTMLNestingInternal.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <vector>

namespace ZORPlatform {
namespace {

constexpr std::size_t kDeepest = 512;
constexpr std::size_t kMostAttributes = 512;

// A name or a tag, in any case, as one number. Two of one number would only make the guess worse.
constexpr std::uint64_t nameHash(std::string_view name) noexcept {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char c : name) {
        const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 0x20) : c;
        hash = (hash ^ static_cast<unsigned char>(lower)) * 0x100000001B3;
    }
    return hash;
}

// What the HTML standard says of an element, as far as it decides which elements are open.
enum Trait : unsigned {
    kVoid = 1U << 0,           // Holds nothing, or is opened by the parser itself.
    kTablePart = 1U << 1,      // Closes what is open in its table.
    kSpecial = 1U << 2,        // The end tag of an ordinary element does not reach beyond it.
    kScope = 1U << 3,          // No end tag reaches beyond it, except that of a table.
    kFormatting = 1U << 4,     // Its end tag closes it alone.
    kHeading = 1U << 5,        // Closed by the end tag of any heading.
    kEndsParagraph = 1U << 6,  // Its start tag closes an open paragraph.
    kRawText = 1U << 7,        // Holds text up to its end tag.
    kBreaksOut = 1U << 8,      // Ends drawings and formulas.
    kForeign = 1U << 9,        // A drawing or a formula: what is in it may close itself.
    kIntegration = 1U << 10,   // Holds HTML inside those.
    kReaching = 1U << 11,      // Special, and its own end tag reaches beyond others that are.
};

struct NamedTraits {
    std::uint64_t name;
    unsigned traits;
};

constexpr auto kTraits = [] {
    constexpr unsigned kBlock = kSpecial | kReaching | kEndsParagraph;
    struct Group {
        unsigned traits;
        std::string_view names;
    };
    constexpr std::array kGroups{
        Group{kVoid,
              "area base basefont bgsound body col embed frame head hr html img image input isindex keygen link "
              "meta param source track wbr br"},
        Group{kTablePart, "caption colgroup tbody td tfoot th thead tr"},
        Group{kBlock,
              "address article aside blockquote center dd details dialog dir div dl dt fieldset figcaption figure "
              "footer form header hgroup li listing main menu nav ol p pre section summary ul"},
        Group{kBlock | kHeading, "h1 h2 h3 h4 h5 h6"},
        Group{kBlock | kScope, "table"},
        Group{kBlock | kRawText, "xmp"},
        Group{kSpecial, "frameset noscript plaintext"},
        Group{kSpecial | kReaching, "button select"},
        Group{kSpecial | kReaching | kScope, "applet marquee object template"},
        Group{kSpecial | kScope | kIntegration, "annotation-xml desc foreignobject mi mn mo ms mtext"},
        Group{kSpecial | kRawText, "iframe noembed noframes script style textarea"},
        Group{kSpecial | kRawText | kIntegration, "title"},
        Group{kForeign, "math svg"},
        Group{kFormatting, "a b big code em font i nobr s small strike strong tt u"},
        Group{kBreaksOut,
              "b big blockquote body br center code dd div dl dt em embed h1 h2 h3 h4 h5 h6 head hr i img li listing "
              "menu meta nobr ol p pre ruby s small span strong strike sub sup table tt u ul var"},
    };
    constexpr std::size_t kNames = [&] {
        std::size_t count = 0;
        for (const Group& group : kGroups) {
            for (const char c : group.names) count += c == ' ' ? 1 : 0;
            ++count;
        }
        return count;
    }();
    std::array<NamedTraits, kNames> all{};
    std::size_t filled = 0;
    for (const Group& group : kGroups) {
        for (std::string_view names = group.names; !names.empty();) {
            const std::string_view name = names.substr(0, names.find(' '));
            names.remove_prefix(std::min(name.size() + 1, names.size()));
            NamedTraits entry{nameHash(name), group.traits};
            for (std::size_t at = 0; at < filled; ++at) {
                if (all[at].name == entry.name) entry.traits = all[at].traits |= group.traits;
            }
            all[filled++] = entry;
        }
    }
    std::sort(all.begin(), all.end(),
              [](const NamedTraits& left, const NamedTraits& right) { return left.name < right.name; });
    return all;
}();

unsigned traitsOf(std::uint64_t name) noexcept {
    const auto* const found =
        std::lower_bound(kTraits.begin(), kTraits.end(), name,
                         [](const NamedTraits& entry, std::uint64_t wanted) { return entry.name < wanted; });
    return found != kTraits.end() && found->name == name ? found->traits : 0;
}

constexpr std::uint64_t kA = nameHash("a");
constexpr std::uint64_t kBody = nameHash("body");
constexpr std::uint64_t kButton = nameHash("button");
constexpr std::uint64_t kDD = nameHash("dd");
constexpr std::uint64_t kDT = nameHash("dt");
constexpr std::uint64_t kHTML = nameHash("html");
constexpr std::uint64_t kLI = nameHash("li");
constexpr std::uint64_t kNobr = nameHash("nobr");
constexpr std::uint64_t kOL = nameHash("ol");
constexpr std::uint64_t kOption = nameHash("option");
constexpr std::uint64_t kP = nameHash("p");
constexpr std::uint64_t kPlaintext = nameHash("plaintext");
constexpr std::uint64_t kTable = nameHash("table");
constexpr std::uint64_t kTemplate = nameHash("template");
constexpr std::uint64_t kUL = nameHash("ul");

// The open elements, as the parser will have them. Where the two differ, here are more.
class OpenElements {
public:
    /// How deep the next element may come to stand.
    [[nodiscard]] std::size_t depth() const noexcept { return open_.size() + toReopen_.size(); }

    /// Whether the content is a drawing's or a formula's.
    [[nodiscard]] bool isForeign() const noexcept {
        for (std::size_t at = open_.size(); at-- > 0;) {
            if ((open_[at].traits & kForeign) != 0) return true;
            if ((open_[at].traits & kIntegration) != 0) return false;
        }
        return false;
    }

    void start(std::uint64_t name, unsigned traits, std::uint64_t text, bool closesItself) {
        if (isForeign()) {
            if ((traits & kBreaksOut) != 0) {
                closeThrough([](const Element& element) { return (element.traits & kForeign) != 0; },
                             [](const Element&) { return false; });
            } else if (closesItself) {
                return;
            }
        }
        if ((traits & kVoid) != 0) return;
        if ((traits & kTablePart) != 0) {
            clearTable();
            return;
        }
        if (name == kLI || name == kDD || name == kDT) {
            closeThrough(
                [&](const Element& element) { return name == kLI ? element.name == kLI : isTermOrData(element); },
                [](const Element& element) { return (element.traits & kSpecial) != 0 && !isPassedByItems(element); });
        }
        if ((traits & kEndsParagraph) != 0) closeInScope(kP, kButton);
        if (name == kButton) closeInScope(kButton, kButton);
        if (name == kA || name == kNobr) removeInScope(name);
        if (!open_.empty()) {
            const Element& last = open_.back();
            if ((traits & last.traits & kHeading) != 0 || (name == kOption && last.name == kOption)) open_.pop_back();
        }
        open_.push_back({name, traits, text});
    }

    void end(std::uint64_t name, unsigned traits) {
        if ((traits & kFormatting) != 0) {
            removeInScope(name);
        } else if (name == kTable) {
            closeThrough([](const Element& element) { return element.name == kTable; },
                         [](const Element& element) { return element.name == kTemplate; });
        } else if ((traits & kHeading) != 0) {
            closeThrough([](const Element& element) { return (element.traits & kHeading) != 0; }, isScope);
        } else if (name == kLI) {
            closeThrough(
                [](const Element& element) { return element.name == kLI; },
                [](const Element& element) { return isScope(element) || element.name == kOL || element.name == kUL; });
        } else if (name == kP) {
            closeInScope(kP, kButton);
        } else if ((traits & kReaching) != 0) {
            closeInScope(name, name);
        } else {
            closeThrough([&](const Element& element) { return element.name == name; },
                         [](const Element& element) { return (element.traits & kSpecial) != 0; });
        }
    }

private:
    struct Element {
        std::uint64_t name;
        unsigned traits;
        std::uint64_t text;  // Of the whole tag.
    };

    static bool isScope(const Element& element) noexcept { return (element.traits & kScope) != 0; }

    static bool isTermOrData(const Element& element) noexcept { return element.name == kDD || element.name == kDT; }

    // A new item closes an older one through these, although they are special.
    static bool isPassedByItems(const Element& element) noexcept {
        return element.name == kP || element.name == nameHash("div") || element.name == nameHash("address");
    }

    /// Closes the last element that is wanted with all behind it, unless a barrier stands before it.
    template <class Wanted, class Barrier>
    void closeThrough(Wanted isWanted, Barrier isBarrier) {
        for (std::size_t at = open_.size(); at-- > 0;) {
            if (isWanted(open_[at])) {
                const bool forgetsFormatting = isScope(open_[at]);
                while (open_.size() > at + 1) {
                    if ((open_.back().traits & kFormatting) != 0 && !forgetsFormatting) addToReopen(open_.back());
                    open_.pop_back();
                }
                open_.pop_back();
                return;
            }
            if (isBarrier(open_[at])) return;
        }
    }

    void closeInScope(std::uint64_t name, std::uint64_t alsoBarrier) {
        closeThrough([&](const Element& element) { return element.name == name; },
                     [&](const Element& element) { return isScope(element) || element.name == alsoBarrier; });
    }

    void removeInScope(std::uint64_t name) {
        const auto isWanted = [name](const Element& element) { return element.name == name; };
        const auto open = std::find_if(open_.rbegin(), open_.rend(),
                                       [&](const Element& element) { return isWanted(element) || isScope(element); });
        if (open != open_.rend()) {
            if (isWanted(*open)) open_.erase(std::next(open).base());
            return;
        }
        const auto toReopen = std::find_if(toReopen_.rbegin(), toReopen_.rend(), isWanted);
        if (toReopen != toReopen_.rend()) toReopen_.erase(std::next(toReopen).base());
    }

    // Formatting that is closed with what it stands in is opened again in what comes next; of equal tags, three.
    void addToReopen(const Element& element) {
        const auto isSame = [&](const Element& other) { return other.text == element.text; };
        if (std::count_if(toReopen_.begin(), toReopen_.end(), isSame) < 3) toReopen_.push_back(element);
    }

    void clearTable() {
        for (std::size_t at = open_.size(); at-- > 0;) {
            if (open_[at].name == kTable) {
                open_.resize(at + 1);
                return;
            }
            if (open_[at].name == kTemplate) return;
        }
    }

    std::vector<Element> open_;
    std::vector<Element> toReopen_;
};

constexpr bool isLetter(char c) noexcept { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
constexpr bool isSpace(char c) noexcept { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }

// Goes through markup as the HTML standard's tokenizer does.
class Tags {
public:
    explicit Tags(std::string_view markup) noexcept : markup_(markup) {}

    struct Tag {
        std::string_view name;
        std::string_view text;  // From the name to behind the tag.
        bool isEnd = false;
        bool closesItself = false;
        std::size_t attributes = 0;
    };

    /// Takes the next tag; false at the end.
    bool next(Tag& tag) {
        for (;;) {
            at_ = markup_.find('<', at_);
            if (at_ >= markup_.size() - std::min<std::size_t>(markup_.size(), 1)) return false;
            const char kind = markup_[++at_];
            if (isLetter(kind)) {
                readTag(tag, /*isEnd=*/false);
                return true;
            }
            if (kind == '/' && at_ + 1 < markup_.size() && isLetter(markup_[at_ + 1])) {
                ++at_;
                readTag(tag, /*isEnd=*/true);
                return true;
            }
            if (kind == '!' || kind == '?' || kind == '/') skipComment();
        }
    }

    /// Goes to the end tag of an element that holds text.
    void skipText(std::uint64_t name) {
        for (;;) {
            at_ = markup_.find("</", at_);
            if (at_ == std::string_view::npos) {
                at_ = markup_.size();
                return;
            }
            const std::size_t begin = at_ + 2;
            std::size_t end = begin;
            while (end < markup_.size() && !endsName(markup_[end])) ++end;
            if (nameHash(markup_.substr(begin, end - begin)) == name) return;
            at_ = begin;
        }
    }

private:
    static constexpr bool endsName(char c) noexcept { return isSpace(c) || c == '/' || c == '>'; }

    void readTag(Tag& tag, bool isEnd) {
        const std::size_t begin = at_;
        while (at_ < markup_.size() && !endsName(markup_[at_])) ++at_;
        tag = {.name = markup_.substr(begin, at_ - begin), .text = {}, .isEnd = isEnd};
        while (at_ < markup_.size() && markup_[at_] != '>') {
            const char c = markup_[at_];
            tag.closesItself = c == '/';
            if (isSpace(c) || c == '/') {
                ++at_;
            } else {
                ++tag.attributes;
                skipAttribute();
            }
        }
        if (at_ < markup_.size()) ++at_;
        tag.text = markup_.substr(begin, at_ - begin);
    }

    void skipAttribute() {
        // An equals sign at its very beginning belongs to the name.
        ++at_;
        while (at_ < markup_.size() && !endsName(markup_[at_]) && markup_[at_] != '=') ++at_;
        skipSpaces();
        if (at_ == markup_.size() || markup_[at_] != '=') return;
        ++at_;
        skipSpaces();
        if (at_ == markup_.size()) return;
        const char quote = markup_[at_];
        if (quote == '"' || quote == '\'') {
            at_ = std::min(markup_.find(quote, at_ + 1), markup_.size() - 1) + 1;
        } else {
            while (at_ < markup_.size() && !isSpace(markup_[at_]) && markup_[at_] != '>') ++at_;
        }
    }

    void skipSpaces() noexcept {
        while (at_ < markup_.size() && isSpace(markup_[at_])) ++at_;
    }

    // From the sign behind "<" to behind the comment's end.
    void skipComment() {
        const std::string_view rest = markup_.substr(at_);
        if (!rest.starts_with("!--")) {
            at_ = std::min(markup_.find('>', at_), markup_.size() - 1) + 1;
            return;
        }
        if (rest.starts_with("!-->") || rest.starts_with("!--->")) {
            at_ = markup_.find('>', at_) + 1;
            return;
        }
        at_ += 3;
        for (;;) {
            at_ = markup_.find("--", at_);
            if (at_ == std::string_view::npos) {
                at_ = markup_.size();
                return;
            }
            const std::string_view end = markup_.substr(at_ + 2, 2);
            if (end.starts_with(">") || end == "!>") {
                at_ = markup_.find('>', at_) + 1;
                return;
            }
            ++at_;
        }
    }

    std::string_view markup_;
    std::size_t at_ = 0;
};

}  // namespace

bool isNestedTooDeep(std::string_view markup) {
    OpenElements open;
    Tags tags(markup);
    std::size_t rootAttributes = 0;
    for (Tags::Tag tag; tags.next(tag);) {
        const std::uint64_t name = nameHash(tag.name);
        const unsigned traits = traitsOf(name);
        // All tags of these two add to the attributes of one element.
        if (name == kHTML || name == kBody) rootAttributes += tag.attributes;
        if (std::max(tag.attributes, rootAttributes) > kMostAttributes) return true;
        if (tag.isEnd) {
            open.end(name, traits);
            continue;
        }
        const bool holdsText = (traits & kRawText) != 0 && !open.isForeign();
        if (name == kPlaintext) return false;
        const bool isFormatting = (traits & kFormatting) != 0;
        open.start(name, traits, isFormatting ? nameHash(tag.text) : 0, tag.closesItself);
        if (open.depth() > kDeepest) return true;
        if (holdsText) tags.skipText(name);
    }
    return false;
}

}  // namespace ZORPlatform
