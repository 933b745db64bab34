# SPDX-License-Identifier: Apache-2.0
# bash completion for zor

_zor_words() {
  mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2")
}

_zor_files() {
  compopt -o filenames
  mapfile -t COMPREPLY < <(compgen -f -- "$1")
}

# A list of words with commas between: those that are not in it yet.
_zor_list() {
  local before= word words=
  [[ $2 == *,* ]] && before=${2%,*},
  for word in $1; do
    [[ ,$before == *,$word,* ]] || words+=" $before$word"
  done
  compopt -o nospace
  _zor_words "$words" "$2"
}

# Options when one has been begun, files otherwise.
_zor_file_or() {
  if [[ $current == -* ]]; then
    _zor_words "$1" "$current"
    [[ ${COMPREPLY[0]-} == *= ]] && compopt -o nospace
  else
    _zor_files "$current"
  fi
}

# Options that only some kinds take.
_zor_kind_options() {
  case $1 in
    iban | bban | account | comment) echo "--exact" ;;
    amount) echo "--locale=" ;;
    name | text | postal-code) echo "--min= --max=" ;;
    phone) echo "--token=" ;;
    pattern) echo "--pattern= --slot=" ;;
  esac
}

_zor() {
  local kinds="iban bban account card comment bcmc national-number registration-number document-number id-card
    access-number amount email mobile-phone street house-number box-number postal-code belgian-postal-code name
    business-name text pin backend-text message"
  local displays="phone challenge login-code pattern"
  local commands="check format explain date text error-code hash base64 encrypt decrypt settings keychain
    watch exclude-from-backup"
  local filter_options="--format= --in= --out= --field= --key= --emit= --labels= --null= --sep= --flush=
    --chunk-header --max-record= --keep-cr --jobs= --stats= --fail-on-invalid --no-env --help"
  local styles="iso numeric compact"
  local current=${COMP_WORDS[COMP_CWORD]} option=
  COMPREPLY=()

  # "=" breaks words: the option then stands one or two words back.
  if [[ $current == = ]]; then
    option=${COMP_WORDS[COMP_CWORD - 1]} current=
  elif [[ $COMP_CWORD -ge 2 && ${COMP_WORDS[COMP_CWORD - 1]} == = ]]; then
    option=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  case $option in
    --format | --in | --out) _zor_words "plain tsv tsv-raw csv jsonl" "$current"; return ;;
    --emit) _zor_list "verdict reason offset normalized formatted" "$current"; return ;;
    --read) _zor_words "$styles" "$current"; return ;;
    --style) _zor_words "$styles full full-no-year no-weekday day-month short medium long long-month" "$current"
      return ;;
    --null) _zor_words "absent invalid" "$current"; return ;;
    --sep) _zor_words "tab comma semicolon" "$current"; return ;;
    --flush) _zor_words "drain line block" "$current"; return ;;
    --codec) _zor_words "zoraescrypt zorbase64" "$current"; return ;;
    --accessible)
      _zor_words "whenUnlocked whenUnlockedThisDeviceOnly afterFirstUnlock afterFirstUnlockThisDeviceOnly always
        alwaysThisDeviceOnly whenPasscodeSetThisDeviceOnly" "$current"
      return
      ;;
    --store) mapfile -t COMPREPLY < <(compgen -f -- "$current"); return ;;
    --key-source) _zor_words "file: keyring: credential:" "$current"; return ;;
    --cipher) _zor_words "aes256 aes128" "$current"; return ;;
    --key-overflow) _zor_words "zero" "$current"; return ;;
    --type) _zor_words "string integer real double boolean date data xml" "$current"; return ;;
    --key-file | --new-key-file) _zor_files "$current"; return ;;
    --stats) _zor_words "stderr hadoop" "$current"; return ;;
  esac

  if [[ $COMP_CWORD -eq 1 ]]; then
    _zor_words "$commands --help --version --json" "$current"
    return
  fi
  case ${COMP_WORDS[1]} in
    check | format | explain)
      if [[ $COMP_CWORD -eq 2 && $current != -* ]]; then
        [[ ${COMP_WORDS[1]} == format ]] && kinds+=" $displays"
        _zor_words "$kinds" "$current"
      else
        _zor_words "$filter_options $(_zor_kind_options "${COMP_WORDS[2]-}")" "$current"
        [[ ${COMPREPLY[0]-} == *= ]] && compopt -o nospace
      fi
      ;;
    date)
      local shown="--style= --template= --locale=" until="--today= --zone="
      if [[ $COMP_CWORD -eq 2 ]]; then _zor_words "today format add years --help" "$current"; else
        case ${COMP_WORDS[2]} in
          today) _zor_words "$shown $until" "$current" ;;
          format) _zor_words "--read= $shown $filter_options" "$current" ;;
          add) _zor_words "--read= $shown --days= --months= --years= $filter_options" "$current" ;;
          *) _zor_words "--read= $until $filter_options" "$current" ;;
        esac
        [[ ${COMPREPLY[0]-} == *= ]] && compopt -o nospace
      fi
      ;;
    error-code) _zor_words "--help" "$current" ;;
    hash)
      if [[ $COMP_CWORD -eq 2 ]]; then
        _zor_words "md5 sha1 sha224 sha256 sha384 sha512 --help" "$current"
      else
        _zor_file_or ""
      fi
      ;;
    base64)
      if [[ $COMP_CWORD -eq 2 ]]; then _zor_words "encode decode --help" "$current"; else
        _zor_file_or "--codec= --line-length="
      fi
      ;;
    text)
      if [[ $COMP_CWORD -eq 2 && $current != -* ]]; then
        _zor_words "accents html escapes flag spaces" "$current"
      else
        _zor_words "$filter_options" "$current"
        [[ ${COMPREPLY[0]-} == *= ]] && compopt -o nospace
      fi
      ;;
    encrypt) _zor_file_or "--cipher= --key-file= --key-file-exact --help" ;;
    decrypt) _zor_file_or "--cipher= --key-file= --key-file-exact --key-overflow= --legacy --help" ;;
    settings)
      if [[ $COMP_CWORD -eq 2 ]]; then _zor_words "show get set convert --help" "$current"; else
        case ${COMP_WORDS[2]} in
          set) _zor_file_or "--key-file= --key-file-exact --legacy --type=" ;;
          convert) _zor_file_or "--key-file= --key-file-exact --legacy --new-key-file= --plain" ;;
          *) _zor_file_or "--key-file= --key-file-exact --legacy --json" ;;
        esac
      fi
      ;;
    keychain)
      if [[ $COMP_CWORD -eq 2 ]]; then _zor_words "get set remove list doctor --help" "$current"; else
        _zor_words "--store= --key-source= --service= --access-group= --accessible= --type= --reference=" "$current"
        [[ ${COMPREPLY[0]-} == *= ]] && compopt -o nospace
      fi
      ;;
    watch) _zor_file_or "--count= --help" ;;
    exclude-from-backup) _zor_file_or "--list --zero --help" ;;
    --version) _zor_words "--json" "$current" ;;
  esac
}

complete -F _zor zor
