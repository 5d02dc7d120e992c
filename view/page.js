// The page: which pose is shown, and what follows when somebody chooses or changes one.

import { Controls } from './controls.js';
import { closestSentence, showSurvey, surveyOf } from './distances.js';
import { byId, coalesced, listenToSizes } from './dom.js';
import { fixedText } from './numbers.js';
import { optionsOf, SHOWN } from './options.js';
import { bentMolecules, moleculesOf, placedPair } from './pair.js';
import { makePanels } from './panels.js';
import { Picture } from './picture.js';
import { decodedPoses, isEnergy, nextRow } from './poses.js';
import { addSaving } from './saving.js';
import { sceneOf } from './scene.js';
import { addTheme, themeOfPage } from './theme.js';
import { NAMED_VIEWS } from './view.js';

const UNTIL_SPOKEN = 400; // milliseconds; so that only the last of many values is told

// "r 3.00 Angstrom, theta 90.0, ... degrees".
function poseSentence({ r, theta, phi, alpha, beta, gamma }) {
  const angles = Object.entries({ theta, phi, alpha, beta, gamma });
  return `r ${fixedText(r, 2)} Angstrom, ` +
    angles.map(([name, value]) => `${name} ${fixedText(value, 1)}`).join(', ') + ' degrees';
}

// The pose of lowest energy, where the table has energies; otherwise its first.
function firstRow(poses, colour) {
  const column = poses.named(colour);
  let first = nextRow(poses, 0, 1);
  if (poses.kind !== 'scan' || !column || !isEnergy(column)) return first;
  for (let k = 0; k < poses.rows; ++k)
    if (!(column.at(k) >= column.at(first)) && Number.isFinite(column.at(k)) && poses.poseAt(k)) first = k;
  return first;
}

class Page {
  constructor(data) {
    const rigid = moleculesOf(data);
    Object.assign(this, {
      data, rigid,
      molecules: rigid, // those that are shown; those of a trajectory bend
      poses: data.poses ? decodedPoses(data.poses, rigid.symbols.length) : null,
      options: optionsOf(data),
      pose: data.pose, placed: null,
      row: -1, isMoved: false, // the chosen pose, and whether it has been changed since
      isMoving: false, isTold: false, spokenTimer: 0 });
    this.picture = new Picture(byId('picture'), data.view, themeOfPage);
    this.controls = new Controls(byId('parameters'), {
      idle: data.idle, shapes: rigid.shapes,
      refuse: (words) => this.say(words),
      change: (name, value, isTyped) => {
        this.place(Object.assign({}, this.pose, { [name]: value }), true);
        this.controls.show(this.pose, isTyped ? name : null);
      } });
    this.panels = makePanels(this.poses, data.poses, (row) => this.choose(row));
    this.followPose = coalesced(() => this.followNow());
    byId('description').textContent = data.description.replace(/: r .*$/, '');
    this.listen();
    const first = this.poses ? firstRow(this.poses, data.poses.colour) : -1;
    if (first >= 0) this.choose(first);
    else this.resetPose();
  }

  // --- words ---

  // What is told by hand is not followed by words about the pose.
  say(words) {
    this.isTold = true;
    byId('status').textContent = words;
  }

  rowWords() {
    if (this.row < 0) return '';
    return (this.isMoved ? 'moved from ' : '') + this.poses.nameOf(this.row);
  }

  tellSoon(survey) {
    clearTimeout(this.spokenTimer);
    this.spokenTimer = setTimeout(() => {
      const { pose, pair } = this.placed;
      const words = [this.rowWords(), poseSentence(pose), closestSentence(pair, survey)];
      const sentence = words.filter((part) => part !== '').join('; ');
      byId('picture').setAttribute('aria-label', `The pair: ${sentence}`);
      if (!this.isTold) byId('status').textContent = sentence;
    }, UNTIL_SPOKEN);
  }

  // --- the pose ---

  place(pose, byHand) {
    Object.assign(this, { pose, isMoved: byHand, isMoving: byHand, isTold: false });
    this.placed = placedPair(this.molecules, pose);
    this.showRow();
    this.followPose();
  }

  // With the next picture of the screen, however often the pose has changed.
  followNow() {
    const survey = surveyOf(this.placed, this.options);
    showSurvey(this.placed.pair, survey, this.options.criterion);
    this.picture.show(sceneOf(this.placed, this.options), this.isMoving);
    this.tellSoon(survey);
  }

  showRow() {
    this.panels.show(this.row, this.rowWords(), themeOfPage());
  }

  choose(row) {
    const pose = this.poses.poseAt(row);
    if (!pose) {
      this.say(`${this.poses.nameOf(row)} has no parameters`);
      return;
    }
    const { positionsAt } = this.poses;
    if (positionsAt)
      this.molecules = bentMolecules(this.rigid, positionsAt(row), pose, this.data.bond_tolerance);
    this.row = row;
    this.place(pose, false);
    this.controls.show(pose, null);
  }

  resetPose() {
    if (this.row >= 0) {
      this.choose(this.row);
      return;
    }
    this.place(this.data.pose, false);
    this.controls.show(this.pose, null);
  }

  // --- the rest of the page ---

  listen() {
    const press = (id, act) => byId(id).addEventListener('click', act);
    press('reset-view', () => this.picture.reset());
    press('reset-pose', () => this.resetPose());
    for (const [letter, view] of Object.entries(NAMED_VIEWS))
      press(`view-${letter}`, () => this.picture.lookFrom(view));
    for (const name of SHOWN) this.listenToCheck(name);
    addSaving(this.data, this.picture, { placed: () => this.placed, tell: (words) => this.say(words) });
    addTheme(() => {
      this.showRow();
      this.picture.paint();
    });
    listenToSizes(['picture', 'map', 'curves'].map(byId), () => {
      this.panels.resize();
      this.picture.paint();
    });
  }

  listenToCheck(name) {
    const box = byId(`show-${name}`);
    box.checked = this.options[name];
    box.addEventListener('change', () => {
      this.options[name] = box.checked;
      this.picture.show(sceneOf(this.placed, this.options), false);
    });
  }
}

new Page(JSON.parse(byId('data').textContent));
