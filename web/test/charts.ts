// Charts in a test: what uPlot drew, and where it has a time.

import uPlot from "uplot";
import { vi } from "vitest";
import { logOf } from "./drawing";

/** Waits until charts have drawn what has changed. */
export const drawn = () => new Promise<void>((done) => setTimeout(done, 0));

/** Returns the commands of a canvas from the first line that begins so, up to the last one that ends so. */
export function logOfChart(chart: uPlot): string[] {
  return logOf(chart.ctx.canvas);
}

/** A chart that only knows its place and its scales: a second is 10 px of the screen, and the value 1 is 50 px high. */
export function fakeChart(context: CanvasRenderingContext2D, data: uPlot.AlignedData = [[]], min: number | null = 0, max: number | null = 50): uPlot {
  return {
    ctx: context,
    bbox: { left: 100, top: 20, width: 500, height: 200 },
    data,
    scales: { x: { min, max }, y: {} },
    valToPos: vi.fn((value: number, scale: string, isCanvas: boolean) => {
      if (!isCanvas) throw new Error("drawings are in pixels of the screen");
      return scale === "x" ? 100 + 10 * value : 120 - 50 * value;
    }),
  } as unknown as uPlot;
}
