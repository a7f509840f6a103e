# Prints what bash offers at the end of a command line: bash complete.bash FILE WORD…
# FILE defines the completion; the last WORD, which may be empty, is the one to be completed.
. /usr/share/bash-completion/bash_completion
. "$1"
shift
COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
COMP_LINE="$*"
COMP_POINT=${#COMP_LINE}
COMPREPLY=()
function=$(complete -p "$1" | sed -nE 's/.*-F ([^ ]+).*/\1/p')
"$function" "$1" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
[ ${#COMPREPLY[@]} -eq 0 ] || printf '%s\n' "${COMPREPLY[@]}"
