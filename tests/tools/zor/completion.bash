#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# completion.bash SCRIPT: what bash offers for the word under the cursor.
set -uo pipefail
export LC_ALL=C
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
. "$1"
cd "$directory"
touch "a key" other

# The shell's own, which only works while the shell completes.
compopt() { :; }

failures=0
# expect_offers OFFERS WORD...: the last word is under the cursor; "=" is a word of its own.
expect_offers() {
  local expected=$1 offered
  shift
  COMP_WORDS=("$@")
  COMP_CWORD=$(($# - 1))
  COMPREPLY=()
  _zor
  offered=$(printf '%s\n' "${COMPREPLY[@]}" | sort | paste -sd ' ')
  if [ "$offered" != "$expected" ]; then
    printf 'for "%s":\n  offered  %s\n  expected %s\n' "$*" "$offered" "$expected"
    failures=$((failures + 1))
  fi
}

expect_offers "check" zor ch
expect_offers "encrypt error-code exclude-from-backup explain" zor e
expect_offers "--version" zor --v
expect_offers "--json" zor --version ""
expect_offers "name national-number" zor check na
expect_offers "pin postal-code" zor explain p
expect_offers "pattern phone pin postal-code" zor format p
expect_offers "--exact" zor check iban --ex
expect_offers "" zor check email --ex
expect_offers "--max-record= --max= --min=" zor check name --m
expect_offers "--pattern=" zor format pattern --p
expect_offers "--token=" zor format phone --t
expect_offers "--locale=" zor format amount --lo
expect_offers "csv jsonl plain tsv tsv-raw" zor check iban --format =
expect_offers "tsv tsv-raw" zor check iban --format = t
expect_offers "verdict" zor check iban --emit = v
expect_offers "verdict,normalized" zor check iban --emit = verdict,n
expect_offers "verdict,reason,formatted verdict,reason,normalized verdict,reason,offset" \
  zor check iban --emit = verdict,reason,
expect_offers "absent" zor check iban --null = a
expect_offers "hadoop" zor check iban --stats = h
expect_offers "add" zor date a
expect_offers "--stats= --style=" zor date format --st
expect_offers "--style=" zor date today --st
expect_offers "--days=" zor date add --d
expect_offers "--today=" zor date years --t
expect_offers "full full-no-year" zor date format --style = f
expect_offers "iso" zor date add --read = i
expect_offers "escapes" zor text e
expect_offers "--max-record=" zor text html --m
expect_offers "sha224 sha256" zor hash sha2
expect_offers "sha1" zor hash sha1
expect_offers "a key" zor hash sha1 a
expect_offers "decode" zor base64 d
expect_offers "zorbase64" zor base64 encode --codec = zorb
expect_offers "--cipher=" zor encrypt --c
expect_offers "a key" zor encrypt --key-file = a
expect_offers "--key-file-exact --key-file= --key-overflow=" zor decrypt --key
[ "$failures" -eq 0 ]
