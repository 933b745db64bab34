# SPDX-License-Identifier: Apache-2.0
# fish completion for zor

set -l kinds iban bban account card comment bcmc national-number registration-number document-number id-card \
    access-number amount email mobile-phone street house-number box-number postal-code belgian-postal-code name \
    business-name text pin backend-text message
set -l displays phone challenge login-code pattern
set -l commands check format explain date text error-code hash base64 encrypt decrypt settings keychain watch \
    exclude-from-backup
set -l formats "plain tsv tsv-raw csv jsonl"
set -l no_command "not __fish_seen_subcommand_from $commands"
set -l date_command "__fish_seen_subcommand_from date"
set -l kind_command "__fish_seen_subcommand_from check format explain; and not $date_command"
set -l filter_command "__fish_seen_subcommand_from check format explain date text"

complete -c zor -f
complete -c zor -n $no_command -a check -d "whether values are valid"
complete -c zor -n $no_command -a format -d "values as people read them"
complete -c zor -n $no_command -a explain -d "why values are not valid"
complete -c zor -n $no_command -a date -d "today, and dates shown, moved, counted"
complete -c zor -n $no_command -a error-code -d "the short code of an error"
complete -c zor -n $no_command -a hash -d "the digest of data in hexadecimal"
complete -c zor -n $no_command -a base64 -d "data as Base64 text and back"
complete -c zor -n $no_command -a encrypt -d "data under a key text"
complete -c zor -n $no_command -a decrypt -d "what encrypt wrote"
complete -c zor -n $no_command -a text -d "texts converted"
complete -c zor -n $no_command -a settings -d "a settings file"
complete -c zor -n $no_command -a keychain -d "secrets in the item store"
complete -c zor -n $no_command -a watch -d "a line for each change"
complete -c zor -n $no_command -a exclude-from-backup -d "marks files that match"
complete -c zor -n $no_command -l version -d "the version"
complete -c zor -n $no_command -l json -d "the version with the tables, as JSON"
complete -c zor -l help -d "help"

set -l no_kind "not __fish_seen_subcommand_from $kinds $displays"
complete -c zor -n "$kind_command; and $no_kind" -a "$kinds"
complete -c zor -n "__fish_seen_subcommand_from format; and not $date_command; and $no_kind" -a "$displays"
complete -c zor -n $filter_command -l format -x -a $formats -d "of input and output"
complete -c zor -n $filter_command -l in -x -a $formats -d "of the input"
complete -c zor -n $filter_command -l out -x -a $formats -d "of the output"
complete -c zor -n $filter_command -l field -x -d "the column to check, from 1"
complete -c zor -n $filter_command -l key -x -d "the member to check in jsonl"
complete -c zor -n $filter_command -l emit -x -d "result columns" \
    -a "(__fish_append , verdict reason offset normalized formatted)"
complete -c zor -n $filter_command -l labels -x -d "the verdicts in words"
complete -c zor -n $filter_command -l null -x -a "absent invalid" -d "what an absent value is"
complete -c zor -n $filter_command -l sep -x -a "tab comma semicolon" -d "between columns"
complete -c zor -n $filter_command -l flush -x -a "drain line block" -d "when to write"
complete -c zor -n $filter_command -l chunk-header -d "a count before each chunk"
complete -c zor -n $filter_command -l max-record -x -d "longer records are too_long"
complete -c zor -n $filter_command -l keep-cr -d "a CR before the line end belongs to the record"
complete -c zor -n $filter_command -l jobs -x -d "threads"
complete -c zor -n $filter_command -l stats -x -a "stderr hadoop" -d "counts at the end"
complete -c zor -n $filter_command -l fail-on-invalid -d "exit status 1 when a record is invalid"
complete -c zor -n $filter_command -l no-env -d "do not read the environment"

set -l limited "$kind_command; and __fish_seen_subcommand_from name text postal-code"
complete -c zor -n "__fish_seen_subcommand_from iban bban account comment" -l exact -d "take values as they stand"
complete -c zor -n "__fish_seen_subcommand_from amount" -l locale -x -d "the writing of amounts"
complete -c zor -n $limited -l min -x -d "the fewest characters"
complete -c zor -n $limited -l max -x -d "the most characters"
complete -c zor -n "__fish_seen_subcommand_from phone" -l token -x -d "what follows the link"
complete -c zor -n "__fish_seen_subcommand_from pattern" -l pattern -x -d "slots and what stands between"
complete -c zor -n "__fish_seen_subcommand_from pattern" -l slot -x -d "what marks a slot"

set -l styles "iso numeric compact"
complete -c zor -n "$date_command; and not __fish_seen_subcommand_from today format add years" \
    -a "today format add years"
complete -c zor -n $date_command -l read -x -a $styles -d "how dates are written"
complete -c zor -n $date_command -l style -x -d "how they are shown" \
    -a "$styles full full-no-year no-weekday day-month short medium long long-month"
complete -c zor -n $date_command -l template -x -d "fields in the order of the locale"
complete -c zor -n $date_command -l locale -x -d "whose names and order"
complete -c zor -n $date_command -l days -x -d "so many days"
complete -c zor -n $date_command -l months -x -d "so many months"
complete -c zor -n $date_command -l years -x -d "so many years"
complete -c zor -n $date_command -l today -x -d "the day that counts as today"
complete -c zor -n $date_command -l zone -x -d "where it is today"

set -l data_command "__fish_seen_subcommand_from hash base64 encrypt decrypt"
set -l cipher_command "__fish_seen_subcommand_from encrypt decrypt"
complete -c zor -n $data_command -F
complete -c zor -n "__fish_seen_subcommand_from hash" -a "md5 sha1 sha224 sha256 sha384 sha512"
complete -c zor -n "__fish_seen_subcommand_from base64" -a "encode decode"
complete -c zor -n "__fish_seen_subcommand_from base64" -l codec -x -a "zoraescrypt zorbase64" -d "the codec"
complete -c zor -n "__fish_seen_subcommand_from base64" -l line-length -x -d "characters a line"
complete -c zor -n $cipher_command -l cipher -x -a "aes256 aes128" -d "the cipher"
complete -c zor -n $cipher_command -l key-file -r -F -d "the text of the key"
complete -c zor -n $cipher_command -l key-file-exact -d "a final line end belongs to the key"
complete -c zor -n "__fish_seen_subcommand_from decrypt" -l key-overflow -x -a zero -d "keys too long are zeros"
complete -c zor -n "__fish_seen_subcommand_from decrypt" -l legacy -d "aes256 data of earlier releases"

set -l conversions accents html escapes flag spaces
complete -c zor -n "__fish_seen_subcommand_from text; and not $kind_command; and not __fish_seen_subcommand_from \
    $conversions" -a "$conversions"

set -l settings_command "__fish_seen_subcommand_from settings"
set -l backup_command "__fish_seen_subcommand_from exclude-from-backup"
complete -c zor -n "$settings_command; or __fish_seen_subcommand_from watch; or $backup_command" -F
complete -c zor -n "$settings_command; and not __fish_seen_subcommand_from show get set convert" \
    -a "show get set convert"
complete -c zor -n $settings_command -l key-file -r -F -d "the text of the key"
complete -c zor -n $settings_command -l key-file-exact -d "a final line end belongs to the key"
complete -c zor -n $settings_command -l legacy -d "what earlier releases encrypted"
complete -c zor -n $settings_command -l json -d "JSON instead of XML"
complete -c zor -n $settings_command -l type -x -a "string integer real boolean date data xml" -d "of the value to set"
complete -c zor -n $settings_command -l new-key-file -r -F -d "the text of the key to convert to"
complete -c zor -n $settings_command -l plain -d "convert to a plain file"
complete -c zor -n "__fish_seen_subcommand_from watch" -l count -x -d "lines until it ends"
complete -c zor -n $backup_command -l list -d "the marked paths"
complete -c zor -n $backup_command -l zero -d "paths end with a NUL byte"

set -l keychain_command "__fish_seen_subcommand_from keychain"
complete -c zor -n "$keychain_command; and not __fish_seen_subcommand_from get set remove list doctor" \
  -a "get set remove list doctor"
complete -c zor -n $keychain_command -l store -r -F -d "the item store"
complete -c zor -n $keychain_command -l key-source -x -a "file: keyring: credential:" -d "where its key is"
complete -c zor -n $keychain_command -l service -x -d "whose keys"
complete -c zor -n $keychain_command -l access-group -x -d "only items of this group"
complete -c zor -n $keychain_command -l accessible -x -d "only items stored with it" \
  -a "whenUnlocked whenUnlockedThisDeviceOnly afterFirstUnlock afterFirstUnlockThisDeviceOnly always
    alwaysThisDeviceOnly whenPasscodeSetThisDeviceOnly"
complete -c zor -n $keychain_command -l type -x -a "string data integer double boolean" -d "of the value"
complete -c zor -n $keychain_command -l reference -x -d "the item that doctor calls so"
