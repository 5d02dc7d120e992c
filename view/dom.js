// Short ways to the elements of the page. Words from files get in as text alone, never as markup.

export function byId(id) {
  return document.getElementById(id);
}

// A new element with properties and children: elements or texts.
export function made(tag, properties, children) {
  const node = Object.assign(document.createElement(tag), properties);
  node.append(...(children || []));
  return node;
}

// Rows of a table: { cells, className } with texts or elements as cells.
export function fillRows(body, rows) {
  body.replaceChildren(...rows.map(({ cells, className }) =>
    made('tr', { className: className || '' }, cells.map((cell) => made('td', {}, [cell])))));
}

// Choices { value: text } of a select.
export function fillChoices(select, choices, chosen) {
  select.replaceChildren(...Object.entries(choices).map(([value, textContent]) =>
    made('option', { value, textContent })));
  select.value = chosen;
}

export function saveFile(name, blob) {
  const link = made('a', { href: URL.createObjectURL(blob), download: name });
  document.body.append(link);
  link.click();
  link.remove();
  setTimeout(() => URL.revokeObjectURL(link.href), 10000);
}

// A function that runs another one with the next picture of the screen, however often it is called.
export function coalesced(paint) {
  let isWaiting = false;
  return () => {
    if (isWaiting) return;
    isWaiting = true;
    requestAnimationFrame(() => {
      isWaiting = false;
      paint();
    });
  };
}

// As many dots as the screen has, up to twice as many each way as pixels of the page.
function dotsOf(canvas) {
  const ratio = Math.min(window.devicePixelRatio || 1, 2);
  const [across, down] = [canvas.clientWidth, canvas.clientHeight].map((size) =>
    Math.max(1, Math.round(size * ratio)));
  return { ratio, across, down };
}

// { context, width, height }: in pixels of the page.
export function sizedContext(canvas) {
  const { ratio, across, down } = dotsOf(canvas);
  if (canvas.width !== across) canvas.width = across;
  if (canvas.height !== down) canvas.height = down;
  const context = canvas.getContext('2d');
  context.setTransform(ratio, 0, 0, ratio, 0, 0);
  return { context, width: canvas.clientWidth, height: canvas.clientHeight, ratio };
}

// Calls repaint() when a canvas that is seen has another size than it was painted in: by the window, or
// by a scroll bar that came when the page grew.
export function listenToSizes(canvases, repaint) {
  const isStale = (canvas) => {
    const { across, down } = dotsOf(canvas);
    return canvas.clientWidth > 0 && (canvas.width !== across || canvas.height !== down);
  };
  const look = () => {
    if (canvases.some(isStale)) repaint();
  };
  const observer = new window.ResizeObserver(look);
  for (const canvas of canvases) observer.observe(canvas);
  window.addEventListener('resize', look); // also for a screen with more dots
}
