# Completion of orvex-sim in bash. Sub-commands and options come from the program's own --help.

_orvex_sim_models() {
    "$1" models 2>/dev/null | awk 'NR > 1 { print $1 }'
}

_orvex_sim_words() {
    local program=$1 subcommand=$2 previous=$3 current=$4
    case $previous in
        -d | --device) _orvex_sim_models "$program" && return ;;
        --scenario | --trace | --link | --tty) compgen -f -- "$current" && return ;;
    esac
    case $current,$subcommand in
        -*)
            "$program" ${subcommand:+"$subcommand"} --help 2>/dev/null |
                sed -nE 's/^  (-[a-z],)?(--[a-z-]+).*/\2/p'
            ;;
        *,) "$program" --help 2>/dev/null | sed -nE '/^Subcommands:/,/^$/s/^  ([a-z]+) .*/\1/p' ;;
        *,models) _orvex_sim_models "$program" ;;
        *,replay) compgen -f -- "$current" ;;
    esac
}

_orvex_sim() {
    local program=$1 current=$2 previous=$3 subcommand='' i
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
            --)
                # What follows is a command line of its own.
                _command_offset $((i + 1))
                return 0
                ;;
            -d | --device | --scenario | --trace | --link | --tty) ((++i)) ;;
            -*) ;;
            *) subcommand=${subcommand:-${COMP_WORDS[i]}} ;;
        esac
    done
    mapfile -t COMPREPLY < <(_orvex_sim_words "$program" "$subcommand" "$previous" "$current" |
        awk -v start="$current" 'index($0, start) == 1')
    case $previous,$subcommand in
        --scenario,* | --trace,* | --link,* | --tty,* | *,replay)
            compopt -o filenames 2>/dev/null
            ;;
    esac
    return 0
}

complete -F _orvex_sim orvex-sim
