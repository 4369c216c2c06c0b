// Puts the page together: follows the events of the server, and shows a person and the session.

import { byId, element } from "../shared/dom";
import { Camera } from "./camera";
import { Charts } from "./charts";
import { showForces, showReadout } from "./momentview";
import { addressOf } from "./orders";
import { lastMoment, Moment, Person, Session } from "./session";
import { SessionView } from "./sessionview";
import { Tabs } from "./tabs";

/** Between two drawings, and between two lists of forces, which are read [ms]. */
const drawingPause = 100;
const listPause = 500;
/** For people who do not want motion. */
const calmPause = 1000;
const cardPadding = 30;
const refused =
  "The session sends nothing to this page. Too many pages are open, or this address is old: close other pages, or open the address that the command printed last.";

class Page {
  private readonly session = new Session();
  private readonly view = new SessionView(this.session, (message) => this.say(message));
  private readonly tabs = new Tabs(byId("persons"), (id) => this.select(id));
  private readonly camera = new Camera(this.session);
  private readonly calm = matchMedia("(prefers-reduced-motion: reduce)");
  private selected: number | undefined;
  private charts: Charts | undefined;
  /** The moment that is looked at; null: the last one. */
  private held: Moment | null = null;
  private pinned: Moment | null = null;
  private connection = "Connecting…";
  private message = "";
  private drawnAt = -Infinity;
  private listedAt = -Infinity;
  private isDrawingPlanned = false;

  start(): void {
    this.follow();
    this.camera.start();
    document.addEventListener("keydown", (event) => this.keyPressed(event));
    new ResizeObserver(() => this.charts?.resize(this.chartWidth())).observe(byId("estimates"));
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => this.showPerson());
    this.showState();
  }

  private follow(): void {
    const events = new EventSource(addressOf("/events"));
    events.addEventListener("open", () => this.connected("Live."));
    events.addEventListener("error", () =>
      this.connected(events.readyState === EventSource.CLOSED ? refused : "Connecting again…"),
    );
    events.addEventListener("facts", (event) => this.session.takeFacts(event.data as string));
    events.addEventListener("message", (event) => {
      this.session.takeNews(event.data as string);
      this.camera.tookNews();
      this.planDrawing();
    });
    events.addEventListener("end", () => {
      events.close();
      this.connected("The session has ended. This page keeps its last state.");
    });
  }

  private connected(text: string): void {
    this.connection = text;
    this.showState();
  }

  private say(message: string): void {
    this.message = message;
    this.showState();
  }

  private showState(): void {
    const { input } = this.session;
    const ended = input?.ended ? "The input has ended." : "";
    const ofInput = input && input.refused > 0 ? `Refused: ${input.lastError}` : "";
    const text = [this.message, this.connection, ended, ofInput].filter((part) => part !== "").join(" ");
    if (byId("state").textContent !== text) byId("state").textContent = text;
  }

  /** A window in the background draws nothing, and keeps the news. */
  private planDrawing(): void {
    if (this.isDrawingPlanned) return;
    this.isDrawingPlanned = true;
    const pause = this.calm.matches ? calmPause : drawingPause;
    const wait = Math.max(0, this.drawnAt + pause - performance.now());
    setTimeout(() => requestAnimationFrame(() => this.draw()), wait);
  }

  private draw(): void {
    this.isDrawingPlanned = false;
    this.drawnAt = performance.now();
    const persons = [...this.session.persons.values()].sort((left, right) => left.id - right.id);
    const before = this.selected;
    if (!persons.some(({ id }) => id === before)) this.selected = persons[0]?.id;
    this.tabs.show(persons, this.selected);
    if (this.selected !== before) this.showPerson();
    this.view.show();
    this.showMoment();
    this.showState();
  }

  private person(): Person | undefined {
    return this.selected === undefined ? undefined : this.session.persons.get(this.selected);
  }

  private select(id: number): void {
    if (id === this.selected) return;
    this.selected = id;
    this.showPerson();
    this.draw();
  }

  private showPerson(): void {
    this.held = this.pinned = null;
    this.listedAt = -Infinity;
    this.charts?.destroy();
    this.charts = undefined;
    const card = element("div", { class: "card" });
    byId("estimates").replaceChildren(card);
    byId("person").setAttribute("aria-labelledby", this.selected === undefined ? "" : `tab-${this.selected}`);
    if (!this.person()) {
      card.textContent = "Nobody is here now.";
      byId("readout").replaceChildren();
      byId("forces").replaceChildren();
      return;
    }
    this.charts = new Charts(card, this.chartWidth(), {
      hover: (time) => this.hold(time === null ? null : this.nearest(time)),
      pick: (time) => this.pin(this.nearest(time)),
    });
    this.showMoment();
  }

  private chartWidth(): number {
    return Math.max(240, byId("estimates").clientWidth - (innerWidth <= 560 ? 14 : cardPadding));
  }

  private nearest(time: number): Moment | null {
    const distance = (moment: Moment) => Math.abs(moment.time - time);
    return this.person()?.moments.reduce((best, moment) => (distance(moment) < distance(best) ? moment : best)) ?? null;
  }

  private hold(moment: Moment | null): void {
    this.held = moment;
    this.showMoment();
  }

  private pin(moment: Moment | null): void {
    this.pinned = moment;
    this.listedAt = -Infinity;
    this.showMoment();
  }

  private showMoment(): void {
    const person = this.person();
    if (!person || !this.charts) return;
    const last = lastMoment(person);
    const shown = this.held ?? last;
    const { now } = this.session;
    this.charts.show(person, now, shown.time, this.pinned?.time ?? null);
    const ago = now - shown.time;
    const when = this.held ? `${ago.toFixed(1)} s ago` : ago > 1 ? `last update ${Math.round(ago)} s ago` : "now";
    showReadout(byId("readout"), person, shown, when);
    this.showForces(last);
  }

  /** A list that is pinned is made once. */
  private showForces(last: Moment): void {
    const pause = this.calm.matches ? calmPause : listPause;
    const now = performance.now();
    if (this.pinned ? this.listedAt > 0 : now - this.listedAt < pause) return;
    this.listedAt = now;
    showForces(byId("forces"), this.session, this.pinned ?? last, this.pinned !== null, () => this.pin(null));
  }

  private keyPressed(event: KeyboardEvent): void {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    if (event.target instanceof HTMLInputElement && event.key !== "Escape") return;
    const isInTabs = this.tabs.hasFocus();
    if ((isInTabs && this.tabs.keyPressed(event.key, this.selected)) || this.keyAnywhere(event)) event.preventDefault();
  }

  private keyAnywhere({ key, target, timeStamp }: KeyboardEvent): boolean {
    const person = this.person();
    const step = { ArrowLeft: -1, ArrowRight: 1 }[key];
    if (step !== undefined && person) {
      this.moveBy(step, person);
      return true;
    }
    if (/^[0-9]$/.test(key)) {
      this.tabs.digitTyped(key, timeStamp);
      return true;
    }
    const isPressed = target instanceof HTMLButtonElement || target instanceof HTMLAnchorElement;
    if (key === "Enter" && person && !isPressed) {
      this.pin(this.held ?? lastMoment(person));
      return true;
    }
    if (key !== "Escape") return false;
    this.held = null;
    this.pin(null);
    return true;
  }

  /** After the last moment the page returns to the present. */
  private moveBy(step: number, { moments }: Person): void {
    const current = this.held ? moments.indexOf(this.held) : moments.length - 1;
    const next = Math.max(0, current + step);
    this.hold(next >= moments.length - 1 ? null : moments[next]);
  }
}

new Page().start();
