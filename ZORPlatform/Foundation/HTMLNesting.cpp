// SPDX-License-Identifier: Apache-2.0
#include <ZORPlatform/Foundation/HTMLNestingInternal.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

namespace ZORPlatform {
namespace {

constexpr std::size_t kDeepest = 512;
constexpr std::size_t kMostAttributes = 512;

// Texts as numbers. That two have one is not to be expected, and would only make the guess worse.
constexpr std::uint64_t textHash(std::string_view text) noexcept {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    return hash;
}

// Of a name in any case.
constexpr std::uint64_t nameHash(std::string_view name) noexcept {
    std::uint64_t hash = textHash({});
    for (const char c : name) {
        const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 0x20) : c;
        hash = (hash ^ static_cast<unsigned char>(lower)) * 0x100000001B3;
    }
    return hash;
}

// What the HTML standard says of an element, as far as it decides which elements are open.
enum Trait : unsigned {
    kVoid = 1U << 0,           // Holds nothing, or is opened by the parser itself.
    kTablePart = 1U << 1,      // Stands in a table, or is no element at all.
    kSpecial = 1U << 2,        // The end tag of an ordinary element does not reach beyond it.
    kScope = 1U << 3,          // No end tag reaches beyond it, except that of a table.
    kFormatting = 1U << 4,     // Its end tag closes it alone; closed by another, it is opened again.
    kHeading = 1U << 5,        // Closed by the end tag of any heading.
    kEndsParagraph = 1U << 6,  // Its start tag closes an open paragraph.
    kRawText = 1U << 7,        // Holds text up to its end tag.
    kBreaksOut = 1U << 8,      // Ends drawings and formulas.
    kReaching = 1U << 9,       // Special, and its own end tag reaches beyond others that are.
    kMarked = 1U << 10,        // What formatting is open outside is not opened again inside.
    kReopensNone = 1U << 11,   // Its start tag opens no formatting again.
    kCell = 1U << 12,          // The part of a table that holds content.
    kSection = 1U << 13,       // The part of a table that holds rows.
    kDrawing = 1U << 14,       // Begins a drawing or a formula.
    kInDrawing = 1U << 15,     // Stands in one: SVG or MathML.
    kHoldsHTML = 1U << 16,     // Stands in one, and holds HTML.
    kRubyPart = 1U << 17,      // Ends what is before it in <ruby> and may be left without an end tag.
};

struct NamedTraits {
    std::uint64_t name;
    unsigned traits;
};

constexpr auto kTraits = [] {
    constexpr unsigned kBlock = kSpecial | kReaching | kEndsParagraph | kReopensNone;
    constexpr unsigned kObject = kSpecial | kReaching | kScope | kMarked;
    struct Group {
        unsigned traits;
        std::string_view names;
    };
    constexpr std::array kGroups{
        Group{kVoid, "area bgsound br embed image img input keygen menuitem wbr"},
        Group{kVoid | kEndsParagraph, "isindex"},
        Group{kVoid | kReopensNone, "base basefont body frame frameset head html link meta param source track"},
        Group{kVoid | kReopensNone | kEndsParagraph, "hr"},
        Group{kReopensNone | kRubyPart, "rb rp rt rtc"},
        Group{kTablePart | kSpecial | kScope | kMarked | kCell, "caption td th"},
        Group{kTablePart | kSpecial | kSection, "tbody tfoot thead"},
        Group{kTablePart | kSpecial, "col colgroup tr"},
        Group{kBlock,
              "address article aside blockquote center dd details dialog dir div dl dt fieldset figcaption figure "
              "footer form header hgroup li listing main menu nav ol p pre section summary ul"},
        Group{kBlock | kHeading, "h1 h2 h3 h4 h5 h6"},
        Group{kSpecial | kScope | kReopensNone, "table"},
        Group{kSpecial | kEndsParagraph | kRawText, "xmp"},
        Group{kSpecial | kEndsParagraph | kRawText | kReopensNone, "plaintext"},
        Group{kSpecial, "noscript select"},
        Group{kSpecial | kReaching, "button"},
        Group{kObject, "applet marquee object"},
        Group{kObject | kReopensNone, "template"},
        Group{kSpecial | kRawText | kReopensNone, "iframe noembed noframes script style textarea title"},
        Group{kDrawing, "math svg"},
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
constexpr std::uint64_t kAddress = nameHash("address");
constexpr std::uint64_t kAnnotationXML = nameHash("annotation-xml");
constexpr std::uint64_t kBody = nameHash("body");
constexpr std::uint64_t kBr = nameHash("br");
constexpr std::uint64_t kButton = nameHash("button");
constexpr std::uint64_t kCaption = nameHash("caption");
constexpr std::uint64_t kCol = nameHash("col");
constexpr std::uint64_t kColgroup = nameHash("colgroup");
constexpr std::uint64_t kDD = nameHash("dd");
constexpr std::uint64_t kDT = nameHash("dt");
constexpr std::uint64_t kDiv = nameHash("div");
constexpr std::uint64_t kFont = nameHash("font");
constexpr std::uint64_t kForm = nameHash("form");
constexpr std::uint64_t kHTML = nameHash("html");
constexpr std::uint64_t kFrameset = nameHash("frameset");
constexpr std::uint64_t kIsindex = nameHash("isindex");
constexpr std::uint64_t kLI = nameHash("li");
constexpr std::uint64_t kMath = nameHash("math");
constexpr std::uint64_t kNobr = nameHash("nobr");
constexpr std::uint64_t kOL = nameHash("ol");
constexpr std::uint64_t kOptgroup = nameHash("optgroup");
constexpr std::uint64_t kOption = nameHash("option");
constexpr std::uint64_t kP = nameHash("p");
constexpr std::uint64_t kPlaintext = nameHash("plaintext");
constexpr std::uint64_t kRtc = nameHash("rtc");
constexpr std::uint64_t kSVG = nameHash("svg");
constexpr std::uint64_t kScript = nameHash("script");
constexpr std::uint64_t kSelect = nameHash("select");
constexpr std::uint64_t kTR = nameHash("tr");
constexpr std::uint64_t kTable = nameHash("table");
constexpr std::uint64_t kTbody = nameHash("tbody");
constexpr std::uint64_t kTemplate = nameHash("template");
constexpr std::uint64_t kTextarea = nameHash("textarea");
constexpr std::uint64_t kUL = nameHash("ul");

// A start tag, as far as it decides what is open.
struct StartTag {
    std::uint64_t name = 0;
    unsigned traits = 0;
    std::uint64_t text = 0;  // Of the whole tag, when it is formatting.
    bool closesItself = false;
    bool hasFontAttribute = false;
    bool hasHTMLEncoding = false;
};

// The open elements and the formatting that is to be opened again, as the parser will have them. Where the two differ,
// here are more.
class OpenElements {
public:
    /// How deep the next element may come to stand.
    [[nodiscard]] std::size_t depth() const noexcept { return counted_ + closedFormatting_; }

    /// Whether the last of them is a drawing's or a formula's.
    [[nodiscard]] bool isInDrawing() const noexcept {
        return !open_.empty() && (open_.back().traits & kInDrawing) != 0;
    }

    void text() {
        if (!isForeign() && !isInSelect()) reopenFormatting();
    }

    /// @return whether text follows up to the end tag
    bool start(const StartTag& tag) {
        if (isForeign(tag) && !breaksOut(tag)) {
            if (!tag.closesItself) push({tag.name, traitsInDrawing(tag, open_.back().root), 0, open_.back().root});
            return false;
        }
        if (isInSelect() && !startInSelect(tag)) return false;
        if ((tag.traits & kTablePart) != 0) {
            startTablePart(tag);
            return false;
        }
        // In another form these two are nothing.
        if ((tag.name == kForm || tag.name == kIsindex) && isFormOpen_ && !isInTemplate()) return false;
        if (tag.name == kForm && !isInTemplate()) isFormOpen_ = true;
        closeBefore(tag);
        if ((tag.traits & kReopensNone) == 0) reopenFormatting();
        if ((tag.traits & kVoid) != 0) return false;
        if ((tag.traits & kDrawing) != 0) {
            if (!tag.closesItself) push({tag.name, kInDrawing, 0, tag.name});
            return false;
        }
        if ((tag.traits & kFormatting) != 0) {
            openFormatting(tag);
        } else {
            push({tag.name, tag.traits, 0, 0});
        }
        return (tag.traits & kRawText) != 0;
    }

    void end(std::uint64_t name, unsigned traits) {
        if (endInDrawing(name) || (isInSelect() && !endInSelect(name, traits))) return;
        if ((traits & kTablePart) != 0) {
            endTablePart(name, traits);
        } else if (name == kTable) {
            closeTable();
        } else if (name == kTemplate) {
            closeThrough(isTemplate, isNone);
        } else if (name == kForm && !isInTemplate()) {
            // What stands in it stays open.
            isFormOpen_ = false;
            const std::size_t form = find(IsNamed{kForm}, isScope);
            if (form != kNone) removeAt(form);
        } else if ((traits & kFormatting) != 0) {
            closeFormatting(name);
        } else if ((traits & kHeading) != 0) {
            closeThrough(isHeading, isScope);
        } else if (name == kLI) {
            closeThrough(IsNamed{kLI}, [](const Element& element) {
                return isScope(element) || is(element, kOL) || is(element, kUL);
            });
        } else if (name == kP) {
            closeInScope(kP, kButton);
        } else if (name == kBr) {
            reopenFormatting();
        } else if ((traits & kReaching) != 0) {
            closeInScope(name, name);
        } else if ((traits & kVoid) == 0) {
            closeThrough(IsNamed{name}, isSpecial);
        }
    }

private:
    struct Element {
        std::uint64_t name;
        unsigned traits;
        std::uint64_t formatting;  // Its number in the list of formatting, or 0.
        std::uint64_t root;        // The name of the drawing or formula that it stands in, or 0.
    };

    // The list of formatting that the standard calls active. A mark hides what is before it.
    struct Formatting {
        std::uint64_t name;    // 0 for a mark.
        std::uint64_t text;    // Of marks, how many there are.
        std::uint64_t number;  // They ascend: what is opened again is the end of the list.
        bool isOpen;
    };

    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    static bool isScope(const Element& element) noexcept { return (element.traits & kScope) != 0; }
    static bool isSpecial(const Element& element) noexcept { return (element.traits & kSpecial) != 0; }
    static bool isHeading(const Element& element) noexcept { return (element.traits & kHeading) != 0; }
    static bool isTemplate(const Element& element) noexcept { return is(element, kTemplate); }
    static bool isNone(const Element&) noexcept { return false; }

    // An element of HTML.
    static bool is(const Element& element, std::uint64_t name) noexcept {
        return element.name == name && element.root == 0;
    }
    struct IsNamed {
        std::uint64_t name;
        bool operator()(const Element& element) const noexcept { return is(element, name); }
    };
    [[nodiscard]] bool isLast(std::uint64_t name) const noexcept { return !open_.empty() && is(open_.back(), name); }

    static bool isCounted(const Element& element) noexcept { return (element.traits & kTablePart) == 0; }

    // ---- Opening and closing ----

    void push(const Element& element) {
        open_.push_back(element);
        if (isCounted(element)) ++counted_;
        if ((element.traits & kMarked) == 0) return;
        if (formatting_.empty() || formatting_.back().name != 0) formatting_.push_back({0, 0, ++lastNumber_, false});
        ++formatting_.back().text;
    }

    void removeAt(std::size_t at) {
        const Element element = open_[at];
        open_.erase(open_.begin() + static_cast<std::ptrdiff_t>(at));
        if (isCounted(element)) --counted_;
        const auto listed = findListed(element);
        if (listed == formatting_.end()) return;
        listed->isOpen = false;
        ++closedFormatting_;
    }

    void closeDownTo(std::size_t count) {
        while (open_.size() > count) removeAt(open_.size() - 1);
    }

    template <class Wanted, class Barrier>
    [[nodiscard]] std::size_t find(Wanted isWanted, Barrier isBarrier) const {
        for (std::size_t at = open_.size(); at-- > 0;) {
            if (isWanted(open_[at])) return at;
            if (isBarrier(open_[at])) return kNone;
        }
        return kNone;
    }

    /// Closes the last element that is wanted with all behind it, unless a barrier stands before it.
    template <class Wanted, class Barrier>
    void closeThrough(Wanted isWanted, Barrier isBarrier) {
        const std::size_t at = find(isWanted, isBarrier);
        if (at == kNone) return;
        const bool isMarked = (open_[at].traits & kMarked) != 0;
        closeDownTo(at);
        if (isMarked) forgetToMark();
    }

    void closeInScope(std::uint64_t name, std::uint64_t alsoBarrier) {
        closeThrough(IsNamed{name},
                     [alsoBarrier](const Element& element) { return isScope(element) || is(element, alsoBarrier); });
    }

    void closeBefore(const StartTag& tag) {
        const std::uint64_t name = tag.name;
        if (name == kLI || name == kDD || name == kDT) {
            // A new item closes an older one through some special elements.
            closeThrough(
                [name](const Element& element) {
                    return name == kLI ? is(element, kLI) : is(element, kDD) || is(element, kDT);
                },
                [](const Element& element) {
                    return isSpecial(element) && !is(element, kP) && !is(element, kDiv) && !is(element, kAddress);
                });
        }
        if ((tag.traits & kEndsParagraph) != 0) closeInScope(kP, kButton);
        if (name == kButton) closeInScope(kButton, kButton);
        if (name == kA) closeAnchor();
        if (name == kNobr) {
            reopenFormatting();
            if (find(IsNamed{kNobr}, isScope) != kNone) closeFormatting(kNobr);
        }
        if (name == kTable) {
            const std::size_t part = tablePart();
            if (part != kNone && (open_[part].traits & kCell) == 0) closeTable();
        }
        if ((tag.traits & kRubyPart) != 0 && find(IsNamed{nameHash("ruby")}, isScope) != kNone) {
            const auto isImplied = [](const Element& element) {
                return (element.traits & kRubyPart) != 0 || is(element, kDD) || is(element, kDT) || is(element, kLI) ||
                       is(element, kOptgroup) || is(element, kOption) || is(element, kP);
            };
            // Texts and parentheses stay in their group.
            const bool endsGroup = tag.name == nameHash("rb") || tag.name == kRtc;
            while (isImplied(open_.back()) && (endsGroup || !isLast(kRtc))) closeLast();
        }
        const bool endsHeading = (tag.traits & kHeading) != 0 && !open_.empty() && isHeading(open_.back());
        const bool endsOption = (name == kOption || name == kOptgroup) && isLast(kOption);
        if (endsHeading || endsOption) closeLast();
    }

    void closeLast() { closeDownTo(open_.size() - 1); }

    // ---- Tables ----

    /// The last table or part of one, as far as the content of a template has one.
    [[nodiscard]] std::size_t tablePart() const {
        return find([](const Element& element) { return (element.traits & kTablePart) != 0 || is(element, kTable); },
                    isTemplate);
    }

    [[nodiscard]] std::size_t findInTable(std::uint64_t name) const {
        return find(IsNamed{name}, [](const Element& element) { return is(element, kTable) || isTemplate(element); });
    }

    void closeCell(std::size_t at) {
        closeDownTo(at);
        forgetToMark();
    }

    void closeTable() {
        const std::size_t table = findInTable(kTable);
        if (table == kNone) return;
        const std::size_t part = tablePart();
        if ((open_[part].traits & kCell) != 0) closeCell(part);
        closeDownTo(table);
    }

    /// Closes and opens parts until the new one stands where it may.
    void startTablePart(const StartTag& tag) {
        const bool isCell = (tag.traits & kCell) != 0 && tag.name != kCaption;
        for (;;) {
            const std::size_t at = tablePart();
            if (at == kNone) return;
            const Element part = open_[at];
            if ((part.traits & kCell) != 0) {
                closeCell(at);
                continue;
            }
            const bool isRowWanted = isCell || tag.name == kTR;
            const bool holdsTag = part.name == kTR ? isCell : (part.traits & kSection) != 0 ? isRowWanted : true;
            closeDownTo(holdsTag ? at + 1 : at);
            if (!holdsTag) continue;
            if (part.name == kTable && isRowWanted) {
                openPart(kTbody);
            } else if ((part.traits & kSection) != 0 && isCell) {
                openPart(kTR);
            } else {
                if (tag.name != kCol && tag.name != kColgroup) openPart(tag.name);
                return;
            }
        }
    }

    void openPart(std::uint64_t name) { push({name, traitsOf(name), 0, 0}); }

    void endTablePart(std::uint64_t name, unsigned traits) {
        const std::size_t part = tablePart();
        if (part == kNone || findInTable(name) == kNone) return;
        const bool isInCell = (open_[part].traits & kCell) != 0;
        if ((traits & kCell) != 0) {
            if (is(open_[part], name)) closeCell(part);
            return;
        }
        if (isInCell) closeCell(part);
        closeDownTo(findInTable(name));
    }

    // ---- Drawings and selections ----

    [[nodiscard]] bool isForeign() const noexcept { return isInDrawing() && (open_.back().traits & kHoldsHTML) == 0; }

    [[nodiscard]] bool isForeign(const StartTag& tag) const noexcept {
        if (!isInDrawing()) return false;
        const Element& last = open_.back();
        if ((last.traits & kHoldsHTML) == 0)
            return last.name != kAnnotationXML || last.root != kMath || tag.name != kSVG;
        return last.root == kMath && last.name != kAnnotationXML &&
               (tag.name == nameHash("mglyph") || tag.name == nameHash("malignmark"));
    }

    /// Whether the tag stands in no drawing; closes those that it ends.
    bool breaksOut(const StartTag& tag) {
        if ((tag.traits & kBreaksOut) == 0 && (tag.name != kFont || !tag.hasFontAttribute)) return false;
        while (isForeign()) closeLast();
        return true;
    }

    static unsigned traitsInDrawing(const StartTag& tag, std::uint64_t root) noexcept {
        constexpr std::array kInFormulas{nameHash("mi"), nameHash("mo"), nameHash("mn"), nameHash("ms"),
                                         nameHash("mtext")};
        constexpr std::array kInPictures{nameHash("foreignobject"), nameHash("desc"), nameHash("title")};
        constexpr unsigned kBarrier = kInDrawing | kSpecial | kScope;
        const auto isIn = [&](const auto& names) {
            return std::find(names.begin(), names.end(), tag.name) != names.end();
        };
        if (root == kMath ? isIn(kInFormulas) : isIn(kInPictures)) return kBarrier | kHoldsHTML;
        if (root == kMath && tag.name == kAnnotationXML) return tag.hasHTMLEncoding ? kBarrier | kHoldsHTML : kBarrier;
        return kInDrawing;
    }

    bool endInDrawing(std::uint64_t name) {
        for (std::size_t at = open_.size(); at-- > 0 && (open_[at].traits & kInDrawing) != 0;) {
            if (open_[at].name != name) continue;
            closeDownTo(at);
            return true;
        }
        return false;
    }

    [[nodiscard]] bool isInSelect() const noexcept {
        const std::size_t last = find(
            IsNamed{kSelect}, [](const Element& element) { return !is(element, kOption) && !is(element, kOptgroup); });
        return last != kNone;
    }

    /// @return whether the tag is more than a part of the selection
    bool startInSelect(const StartTag& tag) {
        if (tag.name == kOption || tag.name == kOptgroup) {
            if (isLast(kOption)) closeLast();
            if (tag.name == kOptgroup && isLast(kOptgroup)) closeLast();
            push({tag.name, tag.traits, 0, 0});
            return false;
        }
        const bool isTable = (tag.traits & kTablePart) != 0 || tag.name == kTable;
        const bool endsSelect = isTable ? tablePart() != kNone && tag.name != kCol && tag.name != kColgroup
                                        : tag.name == kSelect || tag.name == kTextarea ||
                                              tag.name == nameHash("input") || tag.name == nameHash("keygen");
        if (endsSelect) closeThrough(IsNamed{kSelect}, isNone);
        return (endsSelect && tag.name != kSelect) || tag.name == kTemplate || tag.name == kScript;
    }

    /// @return whether the tag ends more than a part of the selection
    bool endInSelect(std::uint64_t name, unsigned traits) {
        if (name == kTemplate) return true;
        const bool isTable = (traits & kTablePart) != 0 || name == kTable;
        if (name == kSelect || (isTable && findInTable(name) != kNone)) {
            closeThrough(IsNamed{kSelect}, isNone);
            return isTable;
        }
        const bool closesGroup = name == kOptgroup && open_.size() > 1 && is(open_[open_.size() - 2], kOptgroup);
        if (isLast(kOption) && (name == kOption || closesGroup)) closeLast();
        if (name == kOptgroup && isLast(kOptgroup)) closeLast();
        return false;
    }

    [[nodiscard]] bool isInTemplate() const { return find(isTemplate, isNone) != kNone; }

    // ---- Formatting ----

    std::vector<Formatting>::iterator findListed(const Element& element) {
        if (element.formatting == 0) return formatting_.end();
        const auto found =
            std::lower_bound(formatting_.begin(), formatting_.end(), element.formatting,
                             [](const Formatting& other, std::uint64_t number) { return other.number < number; });
        return found != formatting_.end() && found->number == element.formatting ? found : formatting_.end();
    }

    struct IsListed {
        std::uint64_t number;
        bool operator()(const Element& element) const noexcept { return element.formatting == number; }
    };

    void forget(std::vector<Formatting>::iterator formatting) {
        if (!formatting->isOpen) --closedFormatting_;
        formatting_.erase(formatting);
    }

    void forgetToMark() {
        while (!formatting_.empty() && formatting_.back().name != 0) forget(std::prev(formatting_.end()));
        if (!formatting_.empty() && --formatting_.back().text == 0) formatting_.pop_back();
    }

    /// The last formatting of that name that no mark hides.
    std::vector<Formatting>::iterator lastFormatting(std::uint64_t name) {
        for (auto at = formatting_.end(); at != formatting_.begin() && std::prev(at)->name != 0; --at) {
            if (std::prev(at)->name == name) return std::prev(at);
        }
        return formatting_.end();
    }

    void reopen(Formatting& formatting) {
        formatting.isOpen = true;
        formatting.number = ++lastNumber_;
        push({formatting.name, kFormatting, formatting.number, 0});
    }

    void reopenFormatting() {
        auto first = formatting_.end();
        while (first != formatting_.begin() && std::prev(first)->name != 0 && !std::prev(first)->isOpen) --first;
        for (; first != formatting_.end(); ++first) {
            --closedFormatting_;
            reopen(*first);
        }
    }

    /// Of equal tags, three are kept in mind.
    void openFormatting(const StartTag& tag) {
        constexpr int kEqual = 3;
        int equal = 0;
        auto earliest = formatting_.end();
        for (auto at = formatting_.end(); at != formatting_.begin() && std::prev(at)->name != 0; --at) {
            if (std::prev(at)->text != tag.text) continue;
            earliest = std::prev(at);
            ++equal;
        }
        if (equal >= kEqual) forget(earliest);
        formatting_.push_back({tag.name, tag.text, 0, false});
        reopen(formatting_.back());
    }

    /// The standard's "adoption agency algorithm": it moves behind the special elements in it, one by one, and is
    /// closed when there is none left.
    void closeFormatting(std::uint64_t name) {
        constexpr int kMostMoves = 8;
        if (isLast(name) && findListed(open_.back()) == formatting_.end()) {
            closeLast();
            return;
        }
        const auto listed = lastFormatting(name);
        if (listed == formatting_.end()) return;
        if (!listed->isOpen) {
            forget(listed);
            return;
        }
        const std::size_t at = find(IsListed{listed->number}, isScope);
        if (at == kNone) return;
        auto it = open_.begin() + static_cast<std::ptrdiff_t>(at);
        for (int moves = 0; moves < kMostMoves; ++moves) {
            const auto block = std::find_if(it, open_.end(), isSpecial);
            if (block == open_.end()) {
                forget(listed);
                closeDownTo(static_cast<std::size_t>(it - open_.begin()));
                return;
            }
            const Element moved = *it;
            const auto kept = std::remove_if(std::next(it), block, [this](const Element& element) {
                return findListed(element) == formatting_.end();
            });
            counted_ -= static_cast<std::size_t>(block - kept);
            it = std::move(std::next(it), kept, it);
            it = std::move(block, std::next(block), it);
            *it = moved;
            it = std::prev(open_.erase(std::next(it), std::next(block)));
        }
    }

    void closeAnchor() {
        if (lastFormatting(kA) == formatting_.end()) return;
        closeFormatting(kA);
        const auto still = lastFormatting(kA);
        if (still == formatting_.end()) return;
        const auto number = still->number;
        forget(still);
        const std::size_t at = find(IsListed{number}, isNone);
        if (at != kNone) removeAt(at);
    }

    std::vector<Element> open_;
    std::vector<Formatting> formatting_;
    std::size_t counted_ = 0;
    std::size_t closedFormatting_ = 0;
    std::uint64_t lastNumber_ = 0;
    bool isFormOpen_ = false;
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
        bool isBehindText = false;
        bool closesItself = false;
        bool hasFontAttribute = false;  // One that makes <font> end a drawing.
        bool hasHTMLEncoding = false;   // One that makes <annotation-xml> hold HTML.
        std::size_t attributes = 0;
    };

    /// Takes the next tag; false at the end.
    ///
    /// @param isInDrawing  whether "<![CDATA[" begins text
    bool next(Tag& tag, bool isInDrawing) {
        tag = {};
        for (;;) {
            const std::size_t begin = at_;
            at_ = markup_.find('<', at_);
            if (at_ >= markup_.size() - std::min<std::size_t>(markup_.size(), 1)) return false;
            if (at_ > begin) tag.isBehindText = true;
            const char kind = markup_[++at_];
            if (isLetter(kind)) {
                readTag(tag);
                return true;
            }
            if (kind == '/' && at_ + 1 < markup_.size() && isLetter(markup_[at_ + 1])) {
                ++at_;
                tag.isEnd = true;
                readTag(tag);
                return true;
            }
            if (isInDrawing && markup_.substr(at_).starts_with("![CDATA[")) {
                at_ = std::min(markup_.find("]]>", at_), markup_.size() - 3) + 3;
            } else if (kind == '!' || kind == '?' || kind == '/') {
                skipComment();
            } else {
                tag.isBehindText = true;
            }
        }
    }

    /// How many times the name stands behind a "<" from here on. Where framesets are, they are all there is, in what
    /// would be text elsewhere, too.
    [[nodiscard]] std::size_t count(std::uint64_t name) const {
        std::size_t count = 0;
        for (std::size_t at = at_; (at = markup_.find('<', at)) != std::string_view::npos;) {
            const std::size_t begin = ++at;
            while (at < markup_.size() && isLetter(markup_[at])) ++at;
            if (nameHash(markup_.substr(begin, at - begin)) == name) ++count;
        }
        return count;
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

    void readTag(Tag& tag) {
        const std::size_t begin = at_;
        while (at_ < markup_.size() && !endsName(markup_[at_])) ++at_;
        tag.name = markup_.substr(begin, at_ - begin);
        while (at_ < markup_.size() && markup_[at_] != '>') {
            const char c = markup_[at_];
            tag.closesItself = c == '/';
            if (isSpace(c) || c == '/') {
                ++at_;
            } else {
                ++tag.attributes;
                readAttribute(tag);
            }
        }
        if (at_ < markup_.size()) ++at_;
        tag.text = markup_.substr(begin, at_ - begin);
    }

    void readAttribute(Tag& tag) {
        const std::size_t begin = at_;
        // An equals sign at its very beginning belongs to the name.
        ++at_;
        while (at_ < markup_.size() && !endsName(markup_[at_]) && markup_[at_] != '=') ++at_;
        const std::uint64_t name = nameHash(markup_.substr(begin, at_ - begin));
        tag.hasFontAttribute |= name == nameHash("color") || name == nameHash("face") || name == nameHash("size");
        skipSpaces();
        if (at_ == markup_.size() || markup_[at_] != '=') return;
        ++at_;
        skipSpaces();
        if (at_ == markup_.size()) return;
        const std::uint64_t value = nameHash(readValue());
        tag.hasHTMLEncoding |= name == nameHash("encoding") &&
                               (value == nameHash("text/html") || value == nameHash("application/xhtml+xml"));
    }

    std::string_view readValue() {
        const char quote = markup_[at_];
        if (quote == '"' || quote == '\'') {
            const std::size_t begin = ++at_;
            const std::size_t end = std::min(markup_.find(quote, at_), markup_.size());
            at_ = std::min(end + 1, markup_.size());
            return markup_.substr(begin, end - begin);
        }
        const std::size_t begin = at_;
        while (at_ < markup_.size() && !isSpace(markup_[at_]) && markup_[at_] != '>') ++at_;
        return markup_.substr(begin, at_ - begin);
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

bool isNestedTooDeep(std::string_view markup, std::vector<std::size_t>* formEnds) {
    OpenElements open;
    Tags tags(markup);
    std::size_t rootAttributes = 0;
    bool hasFramesets = false;
    for (Tags::Tag tag; tags.next(tag, open.isInDrawing());) {
        if (tag.isBehindText) open.text();
        const std::uint64_t name = nameHash(tag.name);
        const unsigned traits = traitsOf(name);
        // All tags of these two add to the attributes of one element.
        if (name == kHTML || name == kBody) rootAttributes += tag.attributes;
        if (std::max(tag.attributes, rootAttributes) > kMostAttributes) return true;
        if (name == kFrameset && !std::exchange(hasFramesets, true) && tags.count(kFrameset) > kDeepest) return true;
        if (tag.isEnd) {
            if (name == kForm && tag.isBehindText && formEnds != nullptr) {
                constexpr std::size_t kBeforeName = 2;
                formEnds->push_back(static_cast<std::size_t>(tag.text.data() - markup.data()) - kBeforeName);
            }
            open.end(name, traits);
            continue;
        }
        const bool holdsText = open.start({.name = name,
                                           .traits = traits,
                                           .text = (traits & kFormatting) != 0 ? textHash(tag.text) : 0,
                                           .closesItself = tag.closesItself,
                                           .hasFontAttribute = tag.hasFontAttribute,
                                           .hasHTMLEncoding = tag.hasHTMLEncoding});
        if (open.depth() > kDeepest) return true;
        if (holdsText && name == kPlaintext) return false;
        if (holdsText) tags.skipText(name);
    }
    return false;
}

}  // namespace ZORPlatform
