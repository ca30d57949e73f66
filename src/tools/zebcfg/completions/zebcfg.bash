# Completion of zebcfg for bash. The tool itself knows the words; "__files" stands for names of files.
_zebcfg() {
    local word=${COMP_WORDS[COMP_CWORD]} candidate words=("${COMP_WORDS[@]:1:COMP_CWORD}")
    # A DN is one word for the tool, with or without quotes on the command line.
    words=("${words[@]#[\"\']}")
    words=("${words[@]%[\"\']}")
    words=("${words[@]//\\/}")
    COMPREPLY=()
    while IFS= read -r candidate; do
        if [ "$candidate" = __files ]; then
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            compopt -o filenames 2>/dev/null
        elif [[ $word = [\"\']* ]]; then
            COMPREPLY+=("$candidate")
        else
            COMPREPLY+=("$(printf '%q' "$candidate")")
        fi
    done < <("${COMP_WORDS[0]}" __complete "${words[@]}" 2>/dev/null)
    if [ ${#COMPREPLY[@]} -eq 1 ] && [[ ${COMPREPLY[0]} = *= ]]; then
        compopt -o nospace 2>/dev/null
    fi
}
# Attributes and DNs hold "=", which is to be a letter like others.
COMP_WORDBREAKS=${COMP_WORDBREAKS//=/}
complete -F _zebcfg zebcfg
