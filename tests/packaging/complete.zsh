# Prints what zsh offers at the end of a command line: zsh -f complete.zsh LINE [FPATH_FOLDER]
zmodload zsh/zpty
setup=$(mktemp)
cat >$setup <<'END'
PROMPT=
[[ -z $FOLDER ]] || fpath=($FOLDER $fpath)
autoload -U compinit
compinit -u -D
bindkey '^I' complete-word
zstyle ':completion:*' insert-tab false
compadd() {
    if [[ ${@[1,(i)(-|--)]} == *-(O|A|D)\ * ]]; then
        builtin compadd "$@"
        return
    fi
    local -a hits
    builtin compadd -A hits "$@"
    local hit
    for hit in $hits; do print -r -- "offered:$hit"; done
    builtin compadd "$@"
}
finish() { print end-of-offers; exit }
comppostfuncs=(finish)
print ready
END
zpty shell "FOLDER=${2:-} zsh -f -i"
zpty -w shell "source $setup"
while zpty -r shell line; do [[ $line == ready* ]] && break; done
zpty -w -n shell "$1"$'\t'
while zpty -r shell line; do
    [[ $line == *end-of-offers* ]] && break
    [[ $line == *offered:* ]] && print -r -- ${${line##*offered:}%%$'\r'*}
done
zpty -d shell
rm $setup
