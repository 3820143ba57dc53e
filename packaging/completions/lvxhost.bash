# bash completion of lvxhost and lvxhost-desktop: what may follow is lvxhost's own answer.
_lvxhost() {
  local line kind= word
  COMPREPLY=()
  while IFS= read -r line; do
    if [ -z "$kind" ]; then kind=$line; else COMPREPLY+=("${line%%$'\t'*}"); fi
  done < <(command lvxhost __complete bash "${COMP_WORDS[@]:0:COMP_CWORD+1}" 2>/dev/null)
  # What bash does with names of files, it does with names of a drawing: their blanks get their backslashes.
  compopt -o filenames 2>/dev/null
  if [ "$kind" = files ]; then
    word=${COMP_WORDS[COMP_CWORD]}
    [ "$word" = = ] && word=
    while IFS= read -r line; do COMPREPLY+=("$line"); done < <(compgen -f -- "${word#[\"\']}")
  elif [[ ${COMPREPLY[0]-} == --* ]]; then
    compopt +o filenames 2>/dev/null
  fi
}
complete -F _lvxhost lvxhost lvxhost-desktop
