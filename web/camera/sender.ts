// Sends the numbers of a frame to the server, one frame after the other, and measures the time from a picture to the
// estimate of the faces in it. A frame without a face has no estimate, and is not measured.

import { Host } from "../shared/camerascript";

/** So many delays are kept. */
const mostDelays = 600;

export interface Answer {
  /** [ns] of the session. */
  time: number;
  /** The numbers of the persons by their tracks. */
  persons: Record<string, number>;
}

export class Sender {
  /** Only one page sends at a time. */
  private readonly page = crypto.randomUUID?.() ?? String(Math.random());
  private waiting: { time: number; captured: number }[] = [];
  private newest = -1;
  /** [ms] from a picture to the news with its estimate, of the last estimates. */
  readonly delays: number[] = [];

  constructor(private readonly host: Host) {
    host.onNews((now) => {
      this.newest = now;
      this.measure();
    });
  }

  /** @param captured when the picture was there [ms of performance.now()]; null: the frame is not measured */
  async send(frame: object, captured: number | null): Promise<Answer> {
    const response = await fetch(this.host.addressOf("/frame"), {
      method: "POST",
      headers: { "Content-Type": "application/json" },
      body: JSON.stringify({ page: this.page, ...frame }),
    }).catch(() => null);
    if (!response) throw new Error("The session does not answer: has it ended?");
    if (!response.ok) throw new Error((await response.text()).trim());
    const answer = (await response.json()) as Answer;
    if (captured !== null) this.waiting.push({ time: answer.time, captured });
    this.measure();
    return answer;
  }

  private measure(): void {
    const now = performance.now();
    const isShown = ({ time }: { time: number }) => time <= this.newest;
    this.delays.push(...this.waiting.filter(isShown).map(({ captured }) => now - captured));
    this.waiting = this.waiting.filter((one) => !isShown(one)).slice(-mostDelays);
    this.delays.splice(0, this.delays.length - mostDelays);
  }
}

/** Returns the value below which that share of the values lies; NaN if the list is empty. */
export function quantile(values: number[], share: number): number {
  const sorted = [...values].sort((left, right) => left - right);
  return sorted[Math.min(sorted.length - 1, Math.floor(share * sorted.length))] ?? NaN;
}
