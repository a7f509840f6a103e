# Completion of orvex-sim in fish. Sub-commands and options come from the program's own --help.

function __orvex_sim_subcommands
    orvex-sim --help 2>/dev/null | sed -nE '/^Subcommands:/,/^$/s/^  ([a-z]+) +(.*)/\1\t\2/p'
end

# The sub-command that is given already.
function __orvex_sim_subcommand
    for word in (commandline -opc)[2..-1]
        if contains -- $word (__orvex_sim_subcommands | string replace -r '\t.*' '')
            echo $word
            return
        end
    end
    return 1
end

function __orvex_sim_is
    contains -- (__orvex_sim_subcommand; or echo none) $argv
end

function __orvex_sim_options
    orvex-sim (__orvex_sim_subcommand) --help 2>/dev/null |
        sed -nE 's/^  (-[a-z],)?(--[a-z-]+)( .*[^ ])?$/\2\t\3/p' |
        sed -E 's/\t .*  +/\t/; s/\t +/\t/'
end

function __orvex_sim_models
    orvex-sim models 2>/dev/null | awk 'NR > 1 { print $1 "\t" $2 }'
end

# What follows -- is a command line of its own.
function __orvex_sim_in_program
    contains -- -- (commandline -opc)
end

function __orvex_sim_program
    set -l words (commandline -opc) (commandline -ct)
    set -l start (contains -i -- -- $words)
    complete -C (string join ' ' -- $words[(math $start + 1)..-1])
end

# Whether the cursor is at what one of these sub-commands takes itself.
function __orvex_sim_takes
    not __orvex_sim_in_program; and __orvex_sim_is $argv
end

function __orvex_sim_at_option
    not __orvex_sim_in_program; and string match -q -- '-*' (commandline -ct)
end

complete -c orvex-sim -f
complete -c orvex-sim -n '__orvex_sim_is none' -a '(__orvex_sim_subcommands)'
complete -c orvex-sim -n __orvex_sim_at_option -a '(__orvex_sim_options)'
complete -c orvex-sim -n '__orvex_sim_takes run serve' -s d -l device -x -a '(__orvex_sim_models)'
complete -c orvex-sim -n '__orvex_sim_takes run serve' -l scenario -r -F
complete -c orvex-sim -n '__orvex_sim_takes run serve' -l trace -r -F
complete -c orvex-sim -n '__orvex_sim_takes serve replay' -l link -r -F
complete -c orvex-sim -n '__orvex_sim_takes serve' -l tty -r -F
complete -c orvex-sim -n '__orvex_sim_takes models' -a '(__orvex_sim_models)'
complete -c orvex-sim -n '__orvex_sim_takes replay' -F
complete -c orvex-sim -n __orvex_sim_in_program -a '(__orvex_sim_program)'
