# fish completion of lvxhost and lvxhost-desktop: what may follow is lvxhost's own answer.
function __lvxhost_complete
    set -l answer (command lvxhost __complete fish (commandline -opc) (commandline -ct) 2>/dev/null)
    test (count $answer) -gt 1; and printf '%s\n' $answer[2..-1]
    test "$answer[1]" = files; and __fish_complete_path (string replace -r '^--[a-z-]+=' '' -- (commandline -ct))
end
complete -c lvxhost -f -a '(__lvxhost_complete)'
complete -c lvxhost-desktop -f -a '(__lvxhost_complete)'
