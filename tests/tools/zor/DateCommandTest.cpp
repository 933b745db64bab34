// SPDX-License-Identifier: Apache-2.0
//
// zor date as people and data engines use it.

#include "ZorProcess.h"

#include <gtest/gtest.h>

#include <regex>

namespace zor::testing {
namespace {

std::string shown(Words arguments, std::string_view input = {}) {
    arguments.insert(arguments.begin(), "date");
    const RunResult result = runZor(std::move(arguments), input);
    EXPECT_EQ(result.err, "");
    return result.out;
}

RunResult inEnvironment(Words environment, Words arguments, std::string_view input = {}) {
    ZorProcess::Setting setting;
    setting.environment = std::move(environment);
    return runZor(std::move(arguments), input, setting);
}

RunResult inZone(const std::string& zone, Words arguments) {
    return inEnvironment({"TZ=" + zone}, std::move(arguments));
}

TEST(ZorDate, TodayIsShownInEveryStyleOfALocale) {
    const auto today = [](const std::string& style, const std::string& locale) {
        return shown({"today", "--today=2018-03-05", "--style=" + style, "--locale=" + locale});
    };
    EXPECT_EQ(shown({"today", "--today=2018-03-05"}), "2018-03-05\n");
    EXPECT_EQ(today("iso", "fr_BE"), "2018-03-05\n");
    EXPECT_EQ(today("numeric", "fr_BE"), "05/03/2018\n");
    EXPECT_EQ(today("compact", "fr_BE"), "05032018\n");
    EXPECT_EQ(today("full", "fr_BE"), "lundi 05 mars 2018\n");
    EXPECT_EQ(today("full-no-year", "nl_BE"), "maandag 05 maart\n");
    EXPECT_EQ(today("no-weekday", "nl_BE"), "05 maart 2018\n");
    EXPECT_EQ(today("day-month", "de_BE"), "05 M\u00E4rz\n");
    EXPECT_EQ(today("short", "en_US"), "Mar 5\n");
    EXPECT_EQ(today("medium", "nl_BE"), "ma 5 mrt\n");
    EXPECT_EQ(today("long", "en_US"), "Monday, 03/05/2018\n");
    EXPECT_EQ(today("long-month", "en_US"), "March 05, 2018\n");
    EXPECT_EQ(shown({"today", "--today=2018-03-05", "--template=yMMMd"}), "5 mrt 2018\n");
}

TEST(ZorDate, TodayIsTheDayOfTheZone) {
    const std::regex date(R"(\d{4}-\d{2}-\d{2}\n)");
    // A whole day apart at every moment.
    const std::string west = shown({"today", "--zone=Etc/GMT+12"});
    const std::string east = shown({"today", "--zone=Etc/GMT-14"});
    EXPECT_TRUE(std::regex_match(west, date)) << west;
    EXPECT_TRUE(std::regex_match(east, date)) << east;
    EXPECT_LT(west, east);
    EXPECT_LT(inZone("Etc/GMT+12", {"date", "today"}).out, inZone("Etc/GMT-14", {"date", "today"}).out);
}

TEST(ZorDate, FormatIsAFilterWithALineForEachLine) {
    EXPECT_EQ(shown({"format", "--style=full"}, "2018-03-05\n\n2018-02-29\n2020-02-29"),
              "maandag 05 maart 2018\n\n\nzaterdag 29 februari 2020\n");
    EXPECT_EQ(shown({"format", "--read=numeric"}, "05/03/2018\n2018-03-05\n"), "2018-03-05\n\n");
    EXPECT_EQ(shown({"format", "--read=compact", "--style=long", "--locale=de_BE"}, "05032018\n"),
              "Montag, 05.03.2018\n");
    EXPECT_EQ(shown({"format"}), "");
}

TEST(ZorDate, FilterHasItsFormatsColumnsAndThreads) {
    EXPECT_EQ(shown({"format", "--format=csv", "--field=2", "--style=short"}, "a,2018-03-05\nb,\n"),
              "a,2018-03-05,5 mrt\nb,,\n");
    EXPECT_EQ(shown({"format", "--format=tsv", "--emit=verdict,reason,offset,normalized,formatted", "--read=numeric"},
                    "05/03/2018\n31/02/2018\n05-03-2018\n05/03\n\n05/03/20181\n01/13/2018\n32/00/2018\n01/01/0000\n"),
              "05/03/2018\t1\tnone\t\\N\t2018-03-05\t2018-03-05\n"
              "31/02/2018\t0\tunexpectedCharacter\t0\t\t\n"
              "05-03-2018\t0\tunexpectedCharacter\t2\t\t\n"
              "05/03\t0\tincomplete\t5\t\t\n"
              "\t0\tempty\t0\t\t\n"
              "05/03/20181\t0\tunexpectedCharacter\t10\t\t\n"
              "01/13/2018\t0\tunexpectedCharacter\t3\t\t\n"
              "32/00/2018\t0\tunexpectedCharacter\t3\t\t\n"
              "01/01/0000\t0\tunexpectedCharacter\t6\t\t\n");
    std::string dates;
    for (int i = 0; i < 20000; ++i)
        dates += "20" + std::to_string(10 + i % 90) + "-03-" + std::to_string(10 + i % 20) + "\n";
    EXPECT_EQ(shown({"format", "--style=full", "--jobs=4"}, dates), shown({"format", "--style=full"}, dates));
}

TEST(ZorDate, AddMovesByCalendar) {
    EXPECT_EQ(shown({"add", "--days=30"}, "2018-03-05\n2018-12-31\nnone\n"), "2018-04-04\n2019-01-30\n\n");
    EXPECT_EQ(shown({"add", "--months=1"}, "2018-01-31\n2020-01-31\n"), "2018-02-28\n2020-02-29\n");
    EXPECT_EQ(shown({"add", "--days=-1", "--style=numeric", "2018-03-01"}), "28/02/2018\n");
    EXPECT_EQ(shown({"add", "--years=1", "--months=1", "--days=1", "2016-02-29"}), "2017-03-29\n");
    EXPECT_EQ(shown({"add", "2018-03-05"}), "2018-03-05\n");
    EXPECT_EQ(shown({"add", "--days=9223372036854775807", "2018-03-05"}), "\n");
    EXPECT_EQ(shown({"add", "--years=-2017"}, "2018-03-05\n2017-12-31\n"), "0001-03-05\n\n");
}

TEST(ZorDate, YearsAreWholeOnesUntilToday) {
    EXPECT_EQ(shown({"years", "--today=2018-02-28"}, "2000-03-01\n2000-02-28\n2000-02-29\n2020-01-01\nx\n"),
              "17\n18\n18\n-1\n\n");
    EXPECT_EQ(shown({"years", "--today=2018-02-28", "--read=compact", "01031990"}), "27\n");
}

TEST(ZorDate, ResultsDoNotDependOnTheMachine) {
    for (const std::string zone : {"UTC", "Pacific/Apia", "America/New_York", "America/Sao_Paulo"}) {
        const auto result = inEnvironment({"TZ=" + zone, "LC_ALL=ar_EG.UTF-8"}, {"date", "add", "--days=1"},
                                          "2011-12-29\n2018-11-03\n");
        EXPECT_EQ(result.out, "2011-12-30\n2018-11-04\n") << zone;
        EXPECT_EQ(inZone(zone, {"date", "format", "--style=full", "2018-11-04"}).out, "zondag 04 november 2018\n");
    }
    EXPECT_EQ(inEnvironment({}, {"date", "years", "--today=2018-02-28"}, "2000-03-01\n").out, "17\n");
}

TEST(ZorDate, ValuesExitWithOneWhenOneIsNoDate) {
    EXPECT_EQ(runZor({"date", "format", "2018-03-05"}).exitCode, 0);
    EXPECT_EQ(runZor({"date", "format", "2018-03-05", "2018-02-29"}).exitCode, 1);
    EXPECT_EQ(runZor({"date", "format"}, "2018-02-29\n").exitCode, 0);
    EXPECT_EQ(runZor({"date", "format", "--fail-on-invalid"}, "2018-02-29\n").exitCode, 1);
}

TEST(ZorDate, RefusesWhatMeansNothing) {
    for (const Words& words :
         {Words{"date"}, Words{"date", "tomorrow"}, Words{"date", "today", "2018-03-05"},
          Words{"date", "today", "--read=iso"}, Words{"date", "today", "--format=csv"},
          Words{"date", "format", "--style=none"}, Words{"date", "format", "--read=full"},
          Words{"date", "format", "--style=full", "--template=d"}, Words{"date", "format", "--template=123"},
          Words{"date", "format", "--days=1"}, Words{"date", "add", "--days=1.5"}, Words{"date", "add", "--days="},
          Words{"date", "years", "--today=28/02/2018"}, Words{"date", "years", "--style=full"},
          Words{"date", "today", "--zone=Nowhere"}, Words{"date", "format", "--jobs=2", "2018-03-05"},
          Words{"date", "format", "--exact"}}) {
        const RunResult result = runZor(words);
        EXPECT_EQ(result.exitCode, 2) << words.back();
        EXPECT_EQ(result.out, "");
        EXPECT_TRUE(std::regex_match(result.err, std::regex("zor: [^\n]+\n"))) << result.err;
    }
    EXPECT_EQ(runZor({"check", "iban", "--days=1"}).exitCode, 2);
}

}  // namespace
}  // namespace zor::testing
