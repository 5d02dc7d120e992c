# complete.zsh FOLDER: for every line of standard input, the line after the Tab key in a zsh whose
# completions are in FOLDER.
zmodload zsh/zpty

zpty shell zsh -f -i
zpty -w shell "PS1= PS2= RPS1=; unsetopt beep prompt_cr prompt_sp; fpath=(${(q)1} \$fpath)"
zpty -w shell 'autoload -Uz compinit; compinit -u -D; zstyle ":completion:*" list-prompt ""'
zpty -w shell 'show() { print -r -- "<<$BUFFER>>"; BUFFER= }; zle -N show; bindkey "^B" show'
zpty -w shell 'bindkey "^I" complete-word; unsetopt auto_list auto_menu; print begin-$((1 + 1))'
zpty -r -m shell seen '*begin-2*'

while IFS= read -r line; do
  zpty -n -w shell "$line"$'\t\C-b'
  zpty -r -m shell seen '*<<*>>*'
  print -r -- "${${seen##*<<}%%>>*}"
done
