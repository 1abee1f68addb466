# Completion of the command-line host. Commands and options are those that the tool itself tells.
_halvo() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]} tool=${COMP_WORDS[0]}
  local command=${COMP_WORDS[1]}
  COMPREPLY=()
  if [[ $COMP_CWORD -eq 1 || ( $COMP_CWORD -eq 2 && $command == help ) ]]; then
    mapfile -t COMPREPLY < <(compgen -W "--help --version $("$tool" --help 2>/dev/null | sed -n 's/^  \([a-z]*\) .*/\1/p')" -- "$current")
    return
  fi
  if [[ $command == store && $COMP_CWORD -eq 2 ]]; then
    mapfile -t COMPREPLY < <(compgen -W "--help $("$tool" store --help 2>/dev/null | sed -n 's/^  \([a-z]*\) .*/\1/p')" -- "$current")
    return
  fi
  local words=("$command")
  [[ $command == store ]] && words+=("${COMP_WORDS[2]}")
  case $previous in
    --type) mapfile -t COMPREPLY < <(compgen -W "animationAndSound soundOnly animationOnly" -- "$current") ;;
    --environment) mapfile -t COMPREPLY < <(compgen -W "primary secondary" -- "$current") ;;
    --background) mapfile -t COMPREPLY < <(compgen -W "black white$([ "$command" = export ] && echo " transparent")" -- "$current") ;;
    --bundle|--library|--record|--store) compopt -o dirnames ;;
    --times|--volume|--app-id|--size|--number|--repeat|--cue|--version|--sdk-version|--fps|--frame-time|\
      --loudness|--sound-delay|--animation-delay|--precision|--gradient-steps|--scale|\
      --from|--to|--wait|--timeout|--older-than) ;;
    *)
      if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$("$tool" "${words[@]}" --help 2>/dev/null | grep -o -- '^  .*' |
          grep -oE -- '^  (-[a-z], )?--?[a-z-]+' | tr -d ' ' | tr ',' '\n')" -- "$current")
      elif [ "$command" = play ] && [ "$COMP_CWORD" -eq 2 ]; then
        mapfile -t COMPREPLY < <(compgen -W "quellaro" -- "$current")
      else
        compopt -o default
      fi ;;
  esac
}
complete -F _halvo halvo
