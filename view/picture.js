// The picture of the page: a scene on a canvas that turns, and with less detail where it must be fast.

import { cameraAt, isAtRest, paperOf, turnedCamera, widenedCamera } from './camera.js';
import { paintProjection } from './canvas.js';
import { paletteOf } from './colours.js';
import { coalesced, made, sizedContext } from './dom.js';
import { outlineOf, projected } from './projection.js';
import { svgOf, svgOnPaper } from './svg.js';
import { listenToView } from './view.js';

// A picture that takes longer to paint, in milliseconds, is painted without details while it turns.
const SLOW_PICTURE = 12;
const UNTIL_REST = 180; // milliseconds; then it gets its details

const PAPER_WIDTH = 800, PAPER_HEIGHT = 600; // of a saved SVG
const DOTS_OF_PNG = 2; // for one pixel

function pointsOfScene(scene) {
  return scene.balls.map(({ centre }) => centre).concat(outlineOf(scene));
}

// Of the atoms: there may be many, and each is kept off the others.
function withoutNames(scene) {
  return Object.assign({}, scene, { captions: scene.captions.filter(({ isName }) => !isName) });
}

export class Picture {
  // firstView: azimuth and elevation, degrees. theme() is 'light' or 'dark'.
  constructor(canvas, firstView, theme) {
    Object.assign(this, { canvas, firstView, theme, camera: null, scene: null, points: [] });
    Object.assign(this, { isTurning: false, restTimer: 0, paintTime: 0 });
    this.paint = coalesced(() => this.paintNow());
    listenToView(canvas, {
      camera: () => this.camera,
      change: (camera) => {
        this.camera = widenedCamera(camera, this.points);
        this.paintTurning();
      },
      reset: () => this.reset(),
      first: () => this.lookFrom(firstView),
      rest: () => this.rest(),
    });
  }

  paintOn(context, size, ratio, isCoarse) {
    const paper = paperOf(this.camera, size.width, size.height);
    const look = { palette: paletteOf(this.theme()), ratio, isCoarse };
    const scene = isCoarse ? withoutNames(this.scene) : this.scene;
    paintProjection(context, projected(scene, paper), size, paper.font, look);
  }

  paintNow() {
    if (this.camera === null) return; // nothing has been shown yet
    const size = sizedContext(this.canvas);
    const began = performance.now();
    const isCoarse = this.isTurning && this.paintTime > SLOW_PICTURE;
    this.paintOn(size.context, size, size.ratio, isCoarse);
    if (!isCoarse) this.paintTime = performance.now() - began;
  }

  paintTurning() {
    this.isTurning = true;
    clearTimeout(this.restTimer);
    this.restTimer = setTimeout(() => this.rest(), UNTIL_REST);
    this.paint();
  }

  rest() {
    clearTimeout(this.restTimer);
    if (!this.isTurning) return;
    this.isTurning = false;
    if (this.paintTime > SLOW_PICTURE) this.paint();
  }

  reset() {
    this.camera = cameraAt(this.firstView, this.points);
    this.paint();
  }

  lookFrom(view) {
    this.camera = widenedCamera(turnedCamera(this.camera, view.azimuth, view.elevation), this.points);
    this.paint();
  }

  // A part of a movement is painted faster, without details.
  show(scene, isMoving) {
    this.scene = scene;
    this.points = pointsOfScene(scene);
    if (this.camera === null) this.reset();
    else this.camera = widenedCamera(this.camera, this.points);
    if (isMoving) this.paintTurning();
    else this.paint();
  }

  // Fills the paper, as `dravo draw` does, until somebody has moved or zoomed the view.
  svg(title, description) {
    const words = { theme: this.theme(), title, description };
    const fitted = Object.assign({ width: PAPER_WIDTH, height: PAPER_HEIGHT }, words);
    if (isAtRest(this.camera)) return svgOf(this.scene, this.camera, fitted);
    const { clientWidth: width, clientHeight: height } = this.canvas;
    const paper = paperOf(this.camera, width, height);
    return svgOnPaper(this.scene, paper, Object.assign({ width, height }, words));
  }

  // take(blob) is called.
  png(take) {
    const size = { width: this.canvas.clientWidth, height: this.canvas.clientHeight };
    const sheet = made('canvas', { width: DOTS_OF_PNG * size.width, height: DOTS_OF_PNG * size.height });
    const context = sheet.getContext('2d');
    context.setTransform(DOTS_OF_PNG, 0, 0, DOTS_OF_PNG, 0, 0);
    this.paintOn(context, size, DOTS_OF_PNG, false);
    sheet.toBlob(take, 'image/png');
  }
}
