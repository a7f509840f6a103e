# Completion of orvexctl in fish. Sub-commands and options come from the program's own --help.

function __orvexctl_subcommands
    orvexctl --help 2>/dev/null | sed -nE '/^Subcommands:/,/^$/s/^  ([a-z]+) +(.*)/\1\t\2/p'
end

# The words behind the program that are neither options nor their values.
function __orvexctl_words
    set -l skip 0
    for word in (commandline -opc)[2..-1]
        if test $skip = 1
            set skip 0
        else if contains -- $word -d --device --model --port --log --timeout --interval --count
            set skip 1
        else if not string match -q -- '-*' $word
            echo $word
        end
    end
end

# Whether the cursor is at this position of one of these sub-commands: 0 comes right behind the
# sub-command, any stands for all.
function __orvexctl_at
    set -l words (__orvexctl_words)
    test (count $words) -gt 0; and contains -- $words[1] $argv[2..-1]; or return 1
    test $argv[1] = any; or test (count $words) -eq (math $argv[1] + 1)
end

function __orvexctl_options
    set -l words (__orvexctl_words)
    orvexctl $words[1] --help 2>/dev/null |
        sed -nE 's/^  (-[a-z],)?(--[a-z-]+)( .*[^ ])?$/\2\t\3/p' |
        sed -E 's/\t .*  +/\t/; s/\t +/\t/'
end

function __orvexctl_lights
    orvexctl list 2>/dev/null | awk 'NR > 1 { print $2; print $3 }'
    set -l links /dev/orvex/by-id/*
    printf '%s\n' $links
end

# The commands of --model's model, else those of the light of --device, or of the only one.
function __orvexctl_commands
    set -l choice
    set -l words (commandline -opc)
    for i in (seq 2 (math (count $words) - 1))
        if contains -- $words[$i] -d --device --model
            set choice $words[$i] $words[(math $i + 1)]
        end
    end
    orvexctl commands $choice 2>/dev/null | awk 'NR > 1 { print $1 }'
end

complete -c orvexctl -f
complete -c orvexctl -n 'test (count (__orvexctl_words)) -eq 0' -a '(__orvexctl_subcommands)'
complete -c orvexctl -n 'string match -q -- "-*" (commandline -ct)' -a '(__orvexctl_options)'
complete -c orvexctl -s d -l device -x -a '(__orvexctl_lights)'
complete -c orvexctl -l model -x -a 'Alder Birch Cedar Hazel Larch Maple Rowan Spruce Tamar Willow'
complete -c orvexctl -l port -r -F
complete -c orvexctl -l log -r -F
complete -c orvexctl -l timeout -x
complete -c orvexctl -n '__orvexctl_at any watch' -l interval -x
complete -c orvexctl -n '__orvexctl_at any watch' -l count -x
complete -c orvexctl -n '__orvexctl_at any on off' -a all
complete -c orvexctl -n '__orvexctl_at 0 lamp' -a 'on off'
complete -c orvexctl -n '__orvexctl_at 0 shutter' -a 'open close'
complete -c orvexctl -n '__orvexctl_at 0 exec' -a '(__orvexctl_commands)'
complete -c orvexctl -n '__orvexctl_at 0 run' -F
