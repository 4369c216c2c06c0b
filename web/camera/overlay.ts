// Draws the picture as a mirror would show it, and over it what was understood: boxes, gaze, names and zones. Only the drawing is
// mirrored; right and left in the readings are the person's own.

import { zoneArrow, zoneWord, signed } from "../shared/text";
import { cssColor } from "../shared/theme";
import { Vector } from "./geometry";
import { Estimate } from "../shared/camerascript";
import { Box } from "./tracker";

export interface Shown {
  box: Box;
  /** Between the eyes. */
  eyes: { x: number; y: number };
  gaze: Vector | null;
  estimate: Estimate | undefined;
}

/** Of the arrow, in widths of the face. */
const arrowLength = 1.2;

export function draw(canvas: HTMLCanvasElement, picture: HTMLCanvasElement, faces: Shown[]): void {
  const context = canvas.getContext("2d");
  if (!context) return;
  if (canvas.width !== picture.width || canvas.height !== picture.height) {
    canvas.width = picture.width;
    canvas.height = picture.height;
  }
  context.save();
  context.translate(canvas.width, 0);
  context.scale(-1, 1);
  context.drawImage(picture, 0, 0);
  context.restore();
  const mirrored = (x: number) => canvas.width - x;
  const unit = Math.max(canvas.width / 320, 1.5);
  context.lineWidth = unit;
  for (const { box, eyes, gaze, estimate } of faces) {
    context.strokeStyle = context.fillStyle = cssColor(estimate ? "accent" : "muted") || "#4a90d9";
    context.strokeRect(mirrored(box.x + box.width), box.y, box.width, box.height);
    if (gaze) arrow(context, mirrored(eyes.x), eyes.y, -gaze[0] * arrowLength * box.width, -gaze[1] * arrowLength * box.width, 4 * unit);
    label(context, textOf(estimate), mirrored(box.x + box.width), box.y, 6.5 * unit);
  }
}

function textOf(estimate: Estimate | undefined): string {
  if (!estimate) return "";
  const valence = Number.isFinite(estimate.valence) ? signed(estimate.valence) : "?";
  return `${estimate.name}: ${valence}, ${zoneArrow(estimate.zone)} ${zoneWord(estimate.zone)}`;
}

function arrow(context: CanvasRenderingContext2D, x: number, y: number, right: number, down: number, head: number): void {
  const length = Math.hypot(right, down);
  context.beginPath();
  context.arc(x, y, head / 2, 0, 2 * Math.PI);
  context.fill();
  if (length < head) return;
  const angle = Math.atan2(down, right);
  context.beginPath();
  context.moveTo(x, y);
  context.lineTo(x + right, y + down);
  for (const side of [-1, 1]) {
    context.moveTo(x + right, y + down);
    context.lineTo(x + right - head * Math.cos(angle + side * 0.5), y + down - head * Math.sin(angle + side * 0.5));
  }
  context.stroke();
}

function label(context: CanvasRenderingContext2D, text: string, x: number, y: number, height: number): void {
  if (text === "") return;
  context.font = `${height}px system-ui, sans-serif`;
  const width = context.measureText(text).width;
  const left = Math.max(0, Math.min(x, context.canvas.width - width - height));
  const top = Math.max(0, y - 1.5 * height);
  context.fillStyle = "rgba(0, 0, 0, 0.65)";
  context.fillRect(left, top, width + height, 1.4 * height);
  context.fillStyle = "#ffffff";
  context.fillText(text, left + height / 2, top + 1.05 * height);
}
