// The buttons that save the picture and copy the pose.

import { byId, saveFile } from './dom.js';
import { describedPose, extendedXyz, fileStem, parameterBlock, placeCommand } from './texts.js';

// Where the browser lets no page write to the clipboard, the text is selected and people copy it.
function copyText(what, text, tell) {
  const box = byId('copied');
  box.value = text;
  const byHand = () => {
    box.focus();
    box.select();
    const isDone = document.execCommand('copy');
    tell(isDone ? `copied ${what}` : `${what}: selected, copy it with Ctrl+C`);
  };
  if (!navigator.clipboard) byHand();
  else navigator.clipboard.writeText(text).then(() => tell(`copied ${what}`), byHand);
}

// placed(): the pair that is shown; tell(words) says what was done.
export function addSaving(data, picture, { placed, tell }) {
  const stem = fileStem(data.title);
  const save = (ending, blob) => {
    saveFile(`${stem}.${ending}`, blob);
    tell(`saved ${stem}.${ending}`);
  };
  const texts = {
    input: ['the end of an input file', () => parameterBlock(placed().pose)],
    command: ['the command', () => placeCommand(data.command, placed().pose)],
    xyz: ['extended xyz', () => extendedXyz(placed())],
  };
  for (const [name, [what, text]] of Object.entries(texts))
    byId(`copy-${name}`).addEventListener('click', () => copyText(what, text(), tell));
  byId('copy-command').hidden = data.command === '';
  byId('save-png').addEventListener('click', () => picture.png((blob) => save('png', blob)));
  byId('save-svg').addEventListener('click', () => {
    const text = picture.svg(data.title, describedPose(data.description, placed().pose));
    save('svg', new Blob([text], { type: 'image/svg+xml' }));
  });
}
