// Follows faces from frame to frame: each keeps its number while it moves, also when faces cross or one is hidden for a
// moment. A face is predicted to move on as it did; overlap, distance and size say which found face is which.

/** A face in the picture; all in pixels of the picture. */
export interface Box {
  x: number;
  y: number;
  width: number;
  height: number;
}

export interface Tracks {
  /** For each box its track; null: it was not seen often enough to count yet. */
  of: (number | null)[];
  /** Tracks that were not found this time, and are looked for. */
  lost: number[];
  /** Tracks that are over. */
  left: number[];
}

interface Track {
  id: number;
  box: Box;
  /** [pixels/s] of the middle. */
  velocity: { x: number; y: number };
  seenAt: number;
  /** In so many frames. */
  seen: number;
}

/** In so many frames a face has to be found before it counts: what is no face is seldom found twice. */
const framesToCount = 3;
/** So long a face is looked for where it was, or would have moved to [s]. */
const longestLoss = 10;
const longestLossOfNew = 0.5;
/** So long a hidden face is taken to move on [s]. */
const longestMotion = 0.8;
/** How far from where it is expected a face may be found, in widths of a face: at once, and more with each second. */
const reach = 0.9;
const reachPerSecond = 1.5;
const furthestReach = 3;
/** The logarithm of how much its size may change: at once, and more with each second. */
const sizeReach = 1;
const sizeReachPerSecond = 0.7;
const smoothing = 0.5;
/** Above so many faces, the nearest pair is joined first; below, all ways to join them are compared. */
const mostCompared = 6;

const middle = ({ x, y, width, height }: Box) => ({ x: x + width / 2, y: y + height / 2 });
const size = ({ width, height }: Box) => Math.sqrt(width * height);

/** Returns the share of the area of both that both have in common. */
export function overlap(one: Box, other: Box): number {
  const width = Math.min(one.x + one.width, other.x + other.width) - Math.max(one.x, other.x);
  const height = Math.min(one.y + one.height, other.y + other.height) - Math.max(one.y, other.y);
  if (width <= 0 || height <= 0) return 0;
  const common = width * height;
  return common / (one.width * one.height + other.width * other.height - common);
}

function predicted({ box, velocity, seenAt }: Track, time: number): Box {
  const passed = Math.min(time - seenAt, longestMotion);
  return { ...box, x: box.x + velocity.x * passed, y: box.y + velocity.y * passed };
}

/** Returns how badly the box fits the track; Infinity: it is another face. */
function misfit(track: Track, box: Box, time: number): number {
  const expected = predicted(track, time);
  const from = middle(expected);
  const to = middle(box);
  const distance = Math.hypot(to.x - from.x, to.y - from.y) / Math.max(size(expected), size(box));
  const growth = Math.abs(Math.log(size(box) / size(expected)));
  const missed = Math.max(0, time - track.seenAt - 0.1);
  const allowed = Math.min(reach + reachPerSecond * missed, furthestReach);
  if (distance > allowed || growth > sizeReach + sizeReachPerSecond * missed) return Infinity;
  return distance + 0.5 * growth + 0.5 * (1 - overlap(expected, box));
}

/** A pair costs less than two that stay alone, however bad it fits. */
const costAlone = 10;

type Pairs = (number | null)[];

/** Returns for each box the place of its track; every way is tried. */
function bestPairs(costs: number[][]): Pairs {
  let best: { cost: number; pairs: Pairs } = { cost: Infinity, pairs: [] };
  const tracks = costs[0]?.length ?? 0;
  const used = new Array<boolean>(tracks).fill(false);
  const pairs: Pairs = [];
  const tryBox = (box: number, cost: number) => {
    if (cost >= best.cost) return;
    if (box === costs.length) {
      best = { cost, pairs: [...pairs] };
      return;
    }
    for (let track = 0; track < tracks; ++track) {
      if (used[track] || costs[box][track] === Infinity) continue;
      used[track] = true;
      pairs[box] = track;
      tryBox(box + 1, cost + costs[box][track]);
      used[track] = false;
    }
    pairs[box] = null;
    tryBox(box + 1, cost + costAlone);
  };
  tryBox(0, 0);
  return best.pairs;
}

function nearestPairs(costs: number[][]): Pairs {
  const pairs: Pairs = costs.map(() => null);
  const all = costs.flatMap((row, box) => row.map((cost, track) => ({ cost, box, track })));
  for (const { cost, box, track } of all.sort((left, right) => left.cost - right.cost))
    if (cost < Infinity && pairs[box] === null && !pairs.includes(track)) pairs[box] = track;
  return pairs;
}

export class Tracker {
  private tracks: Track[] = [];
  private last = 0;

  /** Takes the faces of a frame; times [s] do not run back. */
  update(boxes: Box[], time: number): Tracks {
    const costs = boxes.map((box) => this.tracks.map((track) => misfit(track, box, time)));
    const pairs = Math.max(boxes.length, this.tracks.length) <= mostCompared ? bestPairs(costs) : nearestPairs(costs);
    const known = [...this.tracks];
    const found = boxes.map((box, i) => {
      const place = pairs[i];
      return place === null ? this.add(box, time) : this.move(known[place], box, time);
    });
    const left = this.forget(time);
    const missing = this.tracks.filter((track) => !found.includes(track) && track.seen >= framesToCount);
    return {
      of: found.map(({ id, seen }) => (seen >= framesToCount ? id : null)),
      lost: missing.map(({ id }) => id),
      left,
    };
  }

  private add(box: Box, time: number): Track {
    const track = { id: ++this.last, box, velocity: { x: 0, y: 0 }, seenAt: time, seen: 1 };
    this.tracks.push(track);
    return track;
  }

  private move(track: Track, box: Box, time: number): Track {
    const passed = time - track.seenAt;
    if (passed > 0) {
      const from = middle(track.box);
      const to = middle(box);
      const blend = (before: number, now: number) => before + smoothing * (now - before);
      track.velocity =
        passed > longestMotion
          ? { x: 0, y: 0 }
          : { x: blend(track.velocity.x, (to.x - from.x) / passed), y: blend(track.velocity.y, (to.y - from.y) / passed) };
    }
    track.box = box;
    track.seenAt = time;
    ++track.seen;
    return track;
  }

  private forget(time: number): number[] {
    const isOver = ({ seen, seenAt }: Track) => time - seenAt > (seen >= framesToCount ? longestLoss : longestLossOfNew);
    const over = this.tracks.filter(isOver);
    this.tracks = this.tracks.filter((track) => !isOver(track));
    return over.filter(({ seen }) => seen >= framesToCount).map(({ id }) => id);
  }
}
