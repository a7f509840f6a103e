# Completion of orvexctl in bash. Sub-commands and options come from the program's own --help.

# Ports and models of the lights that are attached, and the links of the udev rules.
_orvexctl_lights() {
    "$1" list 2>/dev/null | awk 'NR > 1 { print $2; print $3 }'
    compgen -G '/dev/orvex/by-id/*' || true
}

# The commands of --model's model, else those of the light of --device, or of the only one.
_orvexctl_commands() {
    local program=$1 word before='' choice=()
    for word in "${COMP_WORDS[@]}"; do
        case $before in
            --model | --device | -d) choice=("$before" "$word") ;;
        esac
        before=$word
    done
    "$program" commands "${choice[@]}" 2>/dev/null | awk 'NR > 1 { print $1 }'
}

# The values of the option before the cursor; fails when it takes none.
_orvexctl_values() {
    local program=$1 option=$2 current=$3
    case $option in
        -d | --device) _orvexctl_lights "$program" ;;
        --model) printf '%s\n' Alder Birch Cedar Hazel Larch Maple Rowan Spruce Tamar Willow ;;
        --port) compgen -f -- "${current:-/dev/tty}" ;;
        --log) compgen -f -- "$current" ;;
        --timeout | --interval | --count) ;;
        *) return 1 ;;
    esac
}

# What a sub-command takes at a position; before it, the sub-commands.
_orvexctl_words() {
    local program=$1 subcommand=$2 position=$3 current=$4
    case $current,$subcommand,$position in
        -*)
            "$program" ${subcommand:+"$subcommand"} --help 2>/dev/null |
                sed -nE 's/^  (-[a-z],)?(--[a-z-]+).*/\2/p'
            ;;
        *,,*) "$program" --help 2>/dev/null | sed -nE '/^Subcommands:/,/^$/s/^  ([a-z]+) .*/\1/p' ;;
        *,on,* | *,off,*) echo all ;;
        *,lamp,0) printf '%s\n' on off ;;
        *,shutter,0) printf '%s\n' open close ;;
        *,exec,0) _orvexctl_commands "$program" ;;
        *,run,0) compgen -f -- "$current" ;;
    esac
}

_orvexctl() {
    local program=$1 current=$2 previous=$3 subcommand='' position=0 i words
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
            -d | --device | --model | --port | --log | --timeout | --interval | --count) ((++i)) ;;
            -*) ;;
            *) if [ -z "$subcommand" ]; then subcommand=${COMP_WORDS[i]}; else ((++position)); fi ;;
        esac
    done
    words=$(_orvexctl_values "$program" "$previous" "$current") ||
        words=$(_orvexctl_words "$program" "$subcommand" "$position" "$current")
    mapfile -t COMPREPLY < <(
        awk -v start="$current" '$0 != "" && index($0, start) == 1' <<<"$words"
    )
    case $previous,$subcommand in
        --port,* | --log,* | *,run) compopt -o filenames 2>/dev/null ;;
    esac
    return 0
}

complete -F _orvexctl orvexctl
