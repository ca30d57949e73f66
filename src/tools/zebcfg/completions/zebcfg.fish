# Completion of zebcfg for fish. The tool itself knows the words; "__files" stands for names of files.
function __zebcfg_complete
    set -l words (commandline -opc)
    set -l found ($words[1] __complete $words[2..-1] (commandline -ct) 2>/dev/null)
    if test "$found" = __files
        __fish_complete_path (commandline -ct)
    else
        string join \n -- $found
    end
end
complete -c zebcfg -f -a '(__zebcfg_complete)'
