// Shows what a camera or a video sees, where the session has one. The script for it is large, and is loaded only then.

import { Host } from "../shared/camerascript";
import { byId } from "../shared/dom";
import { addressOf } from "./orders";
import { lastMoment, personName, Session } from "./session";

const nanoseconds = 1e9;

export class Camera {
  private readonly listeners: ((now: number) => void)[] = [];

  constructor(private readonly session: Session) {}

  /** Starts what the page looks at, if that is anything. */
  start(): void {
    const { camera: looksAt, model = "" } = document.documentElement.dataset;
    if (!looksAt) return;
    const place = byId("camera");
    place.hidden = false;
    const script = document.createElement("script");
    script.src = addressOf("/camera/camera.js");
    script.onload = () => window.skeigiotCamera?.start(place, this.host(looksAt, model));
    script.onerror = () => place.append("The script of the camera was not loaded: is the installation complete?");
    document.head.append(script);
  }

  /** Says that news have come in. */
  tookNews(): void {
    for (const took of this.listeners) took(Math.round(this.session.now * nanoseconds));
  }

  private host(looksAt: string, model: string): Host {
    return {
      looksAt,
      model,
      addressOf,
      estimateOf: (id) => {
        const person = this.session.persons.get(id);
        if (!person) return undefined;
        const { zone, valence, valenceKnown } = lastMoment(person);
        return { name: personName(person), zone, valence: valenceKnown ? valence : NaN };
      },
      onNews: (took) => this.listeners.push(took),
    };
  }
}
