// SPDX-License-Identifier: Apache-2.0
//
// Input rules beside what the machine needs to look at each unit once, and beside the expressions that define them.

#include <ZORFoundation/ZORNationalRegistrationNumberValidator.h>
#include <benchmarks/Comparison.h>
#include <tests/support/InputRuleModel.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace {

using benchmarks::Comparison;
using ZORFoundation::InputValidator;
using Texts = std::vector<std::u16string>;

constexpr const char* kFloor = "one table look-up per unit";
constexpr const char* kFloorAndCheck = "one table look-up per unit, and the check";
constexpr const char* kReusedAndCheck = "ICU, matcher reused, and the check";
constexpr const char* kReused = "ICU, compiled once, matcher reused";
constexpr const char* kCompiled = "ICU, compiled at each call";

// Printable Latin-1: a table that no compiler can see through.
std::array<std::uint8_t, 256> printable = [] {
    std::array<std::uint8_t, 256> table{};
    for (std::size_t unit = 0x20; unit < table.size(); ++unit) table[unit] = 1;
    return table;
}();

[[gnu::noinline]] bool lookedUp(std::u16string_view text) {
    std::uint8_t all = 1;
    for (const char16_t unit : text) all &= printable[unit & 0xFF];
    return all != 0;
}

template <typename Rule>
void each(const Texts& texts, Rule rule) {
    for (const std::u16string& text : texts) benchmark::DoNotOptimize(rule(text));
}

// A rule over texts as people type them, the last of them refused.
struct FixedRule {
    const char* name;
    support::InputRule::Rule rule;
    std::u16string_view pattern;
    Texts texts;
};

const std::u16string kLetters = u"àèìòùáéíóúâêîôûäëïöüçÀÈÌÒÙÁÉÍÓÚÂÊÎÔÛÄËÏÖÜÇ";
const std::u16string kName = u"^[a-zA-Z" + kLetters + u", ’’‘`.-]";
const std::u16string kText = u"^[a-zA-Z0-9" + kLetters + u",’’‘`\\.\\- ]";
const std::u16string kOpenName = kName + u"*$";
const std::u16string kLimitedName = kName + u"{2,30}$";
const std::u16string kStreet = kText + u"*$";
const std::u16string kLimitedText = kText + u"{0,140}$";
const std::u16string kBusinessName = u"^[0-9a-zA-Z" + kLetters + u", '.\\-()!?:{}#]*$";

const Texts kNames{u"Jan",
                   u"Zoë",
                   u"Jean-Pierre",
                   u"Van den Broeck",
                   u"de la Tour d’Auvergne",
                   u"François-Xavier Hérissonnière",
                   u"Marie-Thérèse",
                   u"Jan2"};
const Texts kStreets{
    u"Kerkstraat 1",        u"Rue de la Loi 16",     u"Avenue de l’Été 12-14", u"Nieuwe Gentsesteenweg 45",
    u"Place Sainte-Gudule", u"Bd du Régent 37, b.4", u"Grote Markt",           u"Rue de l'Été"};

const std::vector<FixedRule>& matchedRules() {
    static const std::vector<FixedRule> rules{
        {"isValidEmail",
         InputValidator::isValidEmail,
         u"[A-Z0-9a-z._%+-]+@[A-Za-z0-9.-]+\\.[A-Za-z]{2,63}",
         {u"jan@zor.be", u"jan.de.smet@mail.zor.be", u"j_s+bank@example.com", u"marie-therese.dubois@skynet.be",
          u"a.b@c.museum", u"info@kerk.brussels", u"jan.smet1984@gmail.com", u"jan.smet@zor"}},
        {"isValidMobilePhoneNumber",
         InputValidator::isValidMobilePhoneNumber,
         u"^[+]?\\s?(\\d[\\s]?([-\\/\\./,]?\\s?)){10,15}$",
         {u"0475123456", u"+32475123456", u"0475 12 34 56", u"0475/12.34.56", u"+32 475 12 34 56", u"0032475123456",
          u"0475-123-456", u"0475 12 34"}},
        {"isValidBoxNumber",
         InputValidator::isValidBoxNumber,
         u"^([A-z ]|\\d)*$",
         {u"1", u"12", u"A", u"bus 12", u"bte 3", u"B2", u"0101", u"b/1"}},
        {"isValidHouseNumber",
         InputValidator::isValidHouseNumber,
         u"^([1-9]{1}[A-z0-9]{0,})$",
         {u"1", u"12", u"12A", u"145", u"1024", u"3b", u"12345", u"012"}},
        {"isValidStreet", InputValidator::isValidStreet, kStreet, kStreets},
        {"isValidName, no limits", InputValidator::isValidName, kOpenName, kNames},
        {"isValidName, 2 to 30",
         [](std::u16string_view text) {
             return InputValidator::isValidName(text, {2, 30});
         },
         kLimitedName, kNames},
        {"isValidText, 0 to 140",
         [](std::u16string_view text) {
             return InputValidator::isValidText(text, {0, 140});
         },
         kLimitedText, kStreets},
        {"isValidBelgiumPostalCode",
         InputValidator::isValidBelgiumPostalCode,
         u"[0-9]{4,4}$",
         {u"1000", u"9000", u"4020", u"2018", u"8400", u"3000", u"7700", u"100"}},
        {"isValidBusinessName",
         InputValidator::isValidBusinessName,
         kBusinessName,
         {u"Bakkerij Peeters", u"L'Atelier (s.p.r.l.)", u"Frituur 't Hoekje", u"De Smet N.V.", u"Café Léopold",
          u"Garage Dupont-Leclercq", u"Studio 54!", u"A & B"}},
        {"isValidPinChar", InputValidator::isValidPinChar, u"[0-9]$", {u"0", u"1", u"2", u"3", u"4", u"5", u"9", u"a"}},
    };
    return rules;
}

const std::vector<FixedRule>& deletionRules() {
    using namespace ZORFoundation::StringExtension;
    static constexpr std::u16string_view kBackend = u"[a-zA-Z0-9()-,:?./+',\"@éêèëàäâïíüùöçôóûî&ÉÈËÀÄÂÏÜÙÖÇÔÓÛÎÍ -]";
    static const Texts kMessages{u"Communication 12/2018",
                                 u"Huur appartement mei, bus 3",
                                 u"Loyer été 2018 (mai)",
                                 u"Rent",
                                 u"Thanks & see you @ 8!",
                                 u"Facture n. 2018-0034 du 3/5",
                                 u"ok",
                                 u"a\t"};
    static const std::vector<FixedRule> rules{
        {"containsOnlyValidCharacters", containsOnlyValidCharacters, kBackend, kMessages},
        {"isValidBackendInputString", isValidBackendInputString, kBackend, kMessages},
        {"isValidMessageBody", isValidMessageBody,
         u"[a-zA-Z0-9()-,:;?!€./+',%<>*#=_\"@éèëàäâïüùöçôûî&ÉÈËÀÄÂÏÜÙÖÇÔÛÎ -]", kMessages},
    };
    return rules;
}

template <typename Ask>
void addRule(const FixedRule& rule, std::uint32_t flags, Ask ask) {
    const auto expression = std::make_shared<support::IcuExpression>(rule.pattern, flags);
    Comparison(rule.name)
        .itemsPerCall(rule.texts.size())
        .candidate([&rule] { each(rule.texts, rule.rule); })
        .floor(kFloor, [&rule] { each(rule.texts, lookedUp); })
        .peer(kReused, [&rule, expression,
                        ask] { each(rule.texts, [&](std::u16string_view text) { return ask(*expression, text); }); })
        .peer(kCompiled,
              [&rule, flags, ask] {
                  each(rule.texts, [&](std::u16string_view text) {
                      support::IcuExpression fresh(rule.pattern, flags);
                      return ask(fresh, text);
                  });
              })
        .atMost(2, kFloor)
        .atMost(0.2, kReused)
        .add();
}

// A rule with a check number on top: its peer and its floor make the check as well, on digits that are at hand.
void addCheckedRule(const FixedRule& rule, support::InputRule::Rule check) {
    const auto expression = std::make_shared<support::IcuExpression>(rule.pattern);
    Texts digits;
    for (std::u16string text : rule.texts) {
        std::erase_if(text, [](char16_t unit) { return unit < u'0' || unit > u'9'; });
        digits.push_back(text);
    }
    const auto eachWithDigits = [&rule, digits, check](const auto& matches) {
        for (std::size_t i = 0; i < digits.size(); ++i) {
            benchmark::DoNotOptimize(matches(rule.texts[i]) && check(digits[i]));
        }
    };
    Comparison(rule.name)
        .itemsPerCall(rule.texts.size())
        .candidate([&rule] { each(rule.texts, rule.rule); })
        .floor(kFloorAndCheck, [eachWithDigits] { eachWithDigits(lookedUp); })
        .peer(kReusedAndCheck,
              [eachWithDigits, expression] {
                  eachWithDigits([&](std::u16string_view text) { return expression->matches(text).value_or(false); });
              })
        .atMost(2, kFloorAndCheck)
        .atMost(0.2, kReusedAndCheck)
        .add();
}

const FixedRule kRegistrationNumber{
    "isValidNationalRegistrationNumber",
    InputValidator::isValidNationalRegistrationNumber,
    u"^\\d{2}\\.\\d{2}\\.\\d{2}-\\d{3}\\.\\d{2}$",
    {u"85.07.30-033.28", u"17.07.30-033.84", u"00.00.00-000.97", u"85.07.30-033.29", u"85.07.30-033"}};
const FixedRule kIDCardNumber{
    "isValidIDCardNumber",
    InputValidator::isValidIDCardNumber,
    u"^[0-9]{3}-[0-9]{7}-[0-9]{2}$",
    {u"000-0000000-00", u"000-0000098-01", u"322-3630929-53", u"322-3630929-54", u"322-3630929"}};

std::u16string repeated(std::u16string_view piece, std::size_t units) {
    std::u16string text;
    while (text.size() < units) text += piece;
    return text;
}

// Twice the input in at most 2.2 times the time, also where a backtracking engine takes far more.
void addGrowth(const char* name, support::InputRule::Rule rule, std::u16string_view piece,
               std::u16string_view end = {}) {
    constexpr std::size_t kUnits = 20'000;
    const std::u16string once = repeated(piece, kUnits) + std::u16string(end);
    const std::u16string twice = repeated(piece, 2 * kUnits) + std::u16string(end);
    Comparison(std::string(name) + ", twice the input")
        .candidate([rule, twice] { benchmark::DoNotOptimize(rule(twice)); })
        .peer("the input once", [rule, once] { benchmark::DoNotOptimize(rule(once)); })
        .atMost(2.2, "the input once")
        .add();
}

const bool registered = [] {
    for (const FixedRule& rule : matchedRules()) {
        addRule(rule, 0,
                [](support::IcuExpression& expression, std::u16string_view text) { return expression.matches(text); });
    }
    for (const FixedRule& rule : deletionRules()) {
        addRule(rule, UREGEX_CASE_INSENSITIVE, [](support::IcuExpression& expression, std::u16string_view text) {
            return expression.deletedFrom(text).empty();
        });
    }
    using Numbers = ZORFoundation::ZORNationalRegistrationNumberValidator;
    addCheckedRule(kRegistrationNumber, Numbers::isValidNationalRegistrationNumber);
    addCheckedRule(kIDCardNumber, Numbers::isValidNationalDocumentNumber);
    using namespace ZORFoundation::StringExtension;
    addGrowth("isValidName", InputValidator::isValidName, u"Zoë ");
    addGrowth("isValidName, typographic apostrophes", InputValidator::isValidName, u"’");
    addGrowth("isValidBusinessName", InputValidator::isValidBusinessName, u"'t ");
    addGrowth("isValidMessageBody", isValidMessageBody, u"€ 5\n");
    addGrowth("isValidEmail, no at sign", InputValidator::isValidEmail, u"a.");
    addGrowth("isValidEmail, no last label", InputValidator::isValidEmail, u"a", u"@a.b.c.");
    addGrowth(
        "isValidEmail, labels", [](std::u16string_view text) { return InputValidator::isValidEmail(text); }, u"a.",
        u"b@c.be");
    addGrowth(
        "explainName", [](std::u16string_view text) { return InputValidator::explainName(text).isValid(); }, u"Zo ",
        u"$");
    addGrowth(
        "explainStreet, clusters",
        [](std::u16string_view text) { return InputValidator::explainStreet(text).isValid(); }, u"e\u0301");
    addGrowth(
        "explainMobilePhoneNumber",
        [](std::u16string_view text) { return InputValidator::explainMobilePhoneNumber(text).isValid(); }, u"\u0663 ");
    return true;
}();

}  // namespace
