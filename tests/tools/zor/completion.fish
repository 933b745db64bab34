#!/usr/bin/env fish
# SPDX-License-Identifier: Apache-2.0
# completion.fish SCRIPT: what fish offers for a line.
set -gx LC_ALL C
source $argv[1]
set -g failures 0

function expect_offers -a line expected
    set -l offered (complete -C $line | string split -f1 \t | sort | string join " ")
    if test "$offered" != "$expected"
        printf 'for "%s":\n  offered  %s\n  expected %s\n' $line $offered $expected
        set -g failures (math $failures + 1)
    end
end

expect_offers "zor ch" "check"
expect_offers "zor e" "encrypt error-code exclude-from-backup explain"
expect_offers "zor --v" "--version"
expect_offers "zor check na" "name national-number"
expect_offers "zor explain p" "pin postal-code"
expect_offers "zor format p" "pattern phone pin postal-code"
expect_offers "zor check iban --ex" "--exact"
expect_offers "zor check email --ex" ""
expect_offers "zor check name --m" "--max --max-record --min"
expect_offers "zor format pattern --p" "--pattern"
expect_offers "zor check iban --format=t" "--format=tsv --format=tsv-raw"
expect_offers "zor check iban --emit=verdict,n" "--emit=verdict,normalized"
expect_offers "zor date t" "today"
expect_offers "zor date format --sty" "--style"
expect_offers "zor date format p" ""
expect_offers "zor date add --read=n" "--read=numeric"
expect_offers "zor text e" "escapes"
expect_offers "zor text html --m" "--max-record"
expect_offers "zor hash sha2" "sha224 sha256"
expect_offers "zor decrypt --key-o" "--key-overflow"
test $failures -eq 0
