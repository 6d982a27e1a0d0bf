// Copies text, also where the page came over plain HTTP and browsers keep their newer clipboard closed.
export async function copy(words) {
  if (navigator.clipboard !== undefined) {
    await navigator.clipboard.writeText(words);
    return;
  }
  const focused = document.activeElement;
  const field = document.createElement("textarea");
  field.value = words;
  field.className = "unseen";
  (focused?.closest("dialog") ?? document.body).append(field);
  field.select();
  document.execCommand("copy");
  field.remove();
  focused?.focus();
}
