#include "client/completionscripts.h"

namespace client {
namespace {

constexpr char kBash[] = R"bash(# Completion of camvoractl in bash.
_camvoractl() {
  local word
  local -a typed=()
  for word in "${COMP_WORDS[@]:1:COMP_CWORD}"; do # bash has split them at "=" and ":", too
    if [ ${#typed[@]} -gt 0 ] && [[ $word == [=:]* || ${typed[-1]} == *[=:] ]]; then
      typed[-1]+=$word
    else
      typed+=("$word")
    fi
  done
  local kept=${typed[-1]%"${typed[-1]##*[=:]}"}
  COMPREPLY=()
  while IFS=$'\t' read -r word _; do
    case $word in
      :files) compopt -o default ;;
      *=) compopt -o nospace && COMPREPLY+=("${word#"$kept"}") ;;
      *) COMPREPLY+=("${word#"$kept"}") ;;
    esac
  done < <("${1/#\~/$HOME}" complete-words -- "${typed[@]}" 2>/dev/null)
}
complete -F _camvoractl camvoractl
)bash";

constexpr char kZsh[] = R"zsh(#compdef camvoractl
# Completion of camvoractl in zsh.
_camvoractl() {
  local word help
  local -a whole begun
  while IFS=$'\t' read -r word help; do
    case $word in
      :files) _files; return ;;
      *=) begun+=("${word//:/\\:}:$help") ;;
      *) whole+=("${word//:/\\:}:$help") ;;
    esac
  done < <("${(Q)words[1]/#\~/$HOME}" complete-words -- "${(@Q)words[2,CURRENT]}" 2>/dev/null)
  _describe -V word whole
  _describe -V parameter begun -S ''
}
if [ "$funcstack[1]" = _camvoractl ]; then
  _camvoractl "$@"
else
  compdef _camvoractl camvoractl
fi
)zsh";

}  // namespace

std::string CompletionScript(const std::string& shell) {
    if (shell == "bash") {
        return kBash;
    }
    return shell == "zsh" ? kZsh : "";
}

}  // namespace client
