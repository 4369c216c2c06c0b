// Puts the page together, and lets it be used with mouse and keyboard.

import { ChartGroup } from "../shared/chartgroup";
import { greatestChange, nearest, Person, readRecording } from "./data";
import { byId, element } from "../shared/dom";
import { readFolder, showFolder } from "./folder";
import { showNothingPinned, showPinned, showReadout } from "./momentview";
import { addRoom, personFacts, showHeader, showRecording } from "./overview";
import { PersonTabs } from "./persons";
import { PersonView } from "./personview";

const cardPadding = 30;
const bigStep = 1; // [s]
const printedWidth = 670; // of a page of A4 without its margins and those of a card [px]

function keyHint(): HTMLElement {
  const key = (name: string) => element("kbd", {}, name);
  return element(
    "span",
    { class: "note keys" },
    key("←"),
    " ",
    key("→"),
    " move the moment, with ",
    key("Shift"),
    " by a second; ",
    key("Enter"),
    " pins it; ",
    key("1"),
    " ",
    key("2"),
    " … choose the person",
  );
}

class Page {
  private readonly recording = readRecording(byId("data").textContent ?? "");
  private person: Person | undefined = this.recording.persons[0];
  private readonly tabs = new PersonTabs(byId("persons"), this.recording, (number) => this.select(number));
  private moment = this.person ? greatestChange(this.person) : 0;
  private pinned: number | null = null;
  private group: ChartGroup | undefined;
  private isPrinting = false;
  private view: PersonView | undefined;

  show(): void {
    showHeader(byId("header"), this.recording);
    showRecording(byId("recording"), this.recording);
    this.showPersons();
    byId("keys").replaceChildren(keyHint());
    this.showAll();
    document.addEventListener("keydown", (event) => this.keyPressed(event));
    new ResizeObserver(() => this.resized()).observe(byId("estimates"));
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => this.showAll());
    addEventListener("beforeprint", () => this.setPrinting(true));
    addEventListener("afterprint", () => this.setPrinting(false));
  }

  /** Paper is light, and of its own width. */
  private setPrinting(isPrinting: boolean): void {
    document.documentElement.toggleAttribute("data-print", isPrinting);
    this.isPrinting = isPrinting;
    this.showAll();
  }

  private showPersons(): void {
    this.tabs.show(this.person);
    const selected = byId("persons").querySelector('[aria-selected="true"]');
    if (selected) byId("person").setAttribute("aria-labelledby", selected.id);
  }

  private select(number: number): void {
    const person = this.recording.persons[number];
    if (!person || person === this.person) return;
    const time = this.person?.time[this.moment] ?? 0;
    const pinnedTime = this.pinned === null ? null : (this.person?.time[this.pinned] ?? null);
    this.person = person;
    this.moment = nearest(person.time, time);
    this.pinned = pinnedTime === null ? null : nearest(person.time, pinnedTime);
    this.showPersons();
    this.showAll();
  }

  private showAll(): void {
    this.group?.destroy();
    const from = this.group?.from ?? 0;
    const to = this.group?.to ?? this.recording.length;
    const group = new ChartGroup(Math.max(this.recording.length, 1e-3), this.chartWidth(), {
      hover: (time) => this.moveTo(time),
      pick: (time) => {
        this.moveTo(time);
        this.pin(this.moment);
      },
      range: () => this.view?.rangeChanged(),
    });
    this.group = group;
    if (this.person) {
      this.view = new PersonView(this.recording, this.person, group, byId("estimates"), byId("details"), (number) =>
        this.select(number),
      );
      byId("estimates").prepend(personFacts(this.person));
    } else byId("estimates").replaceChildren(element("p", { class: "card" }, "Nobody was seen in this recording."));
    addRoom(byId("details"), this.recording, group);
    if (from > 0 || to < this.recording.length) group.showRange(from, to);
    this.showMoment();
    this.showPinned();
  }

  private chartWidth(): number {
    if (this.isPrinting) return printedWidth;
    return Math.max(240, byId("estimates").clientWidth - (innerWidth <= 560 ? 14 : cardPadding));
  }

  private resized(): void {
    this.group?.resize(this.chartWidth());
    this.view?.rangeChanged();
  }

  private moveTo(time: number): void {
    if (this.person) this.goTo(nearest(this.person.time, time));
  }

  private goTo(moment: number): void {
    if (!this.person) return;
    this.moment = Math.min(Math.max(moment, 0), this.person.time.length - 1);
    this.showMoment();
  }

  private showMoment(): void {
    if (!this.person) return;
    showReadout(byId("readout"), this.recording, this.person, this.moment);
    this.group?.moveTo(this.person.time[this.moment]);
  }

  private pin(moment: number | null): void {
    this.pinned = moment;
    this.showPinned();
  }

  private showPinned(): void {
    if (!this.person || this.pinned === null) showNothingPinned(byId("pinned"));
    else showPinned(byId("pinned"), this.person, this.pinned);
    this.group?.markPinned(this.pinned === null ? null : (this.person?.time[this.pinned] ?? null));
  }

  private keyPressed(event: KeyboardEvent): void {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    if (event.target instanceof HTMLInputElement && event.key !== "Escape") return;
    const isInTabs = this.tabs.hasFocus();
    const isHandled = (isInTabs && this.tabs.keyPressed(event.key, this.person)) || this.keyAnywhere(event);
    if (isHandled) event.preventDefault();
  }

  private keyAnywhere({ key, shiftKey, target, timeStamp }: KeyboardEvent): boolean {
    const step = { ArrowLeft: -1, ArrowRight: 1 }[key];
    if (step !== undefined && this.person) {
      if (shiftKey) this.moveTo(this.person.time[this.moment] + step * bigStep);
      else this.goTo(this.moment + step);
      return true;
    }
    if (/^[0-9]$/.test(key)) {
      this.tabs.digitTyped(key, timeStamp);
      return true;
    }
    switch (key) {
      case "Home":
        this.goTo(0);
        return true;
      case "End":
        this.goTo(Infinity);
        return true;
      case "Enter":
        if (target instanceof HTMLButtonElement) return false;
        this.pin(this.moment);
        return true;
      case "Escape":
        this.pin(null);
        return true;
      default:
        return false;
    }
  }
}

const folder = readFolder(byId("data").textContent ?? "");
if (folder) showFolder(folder, byId("header"), byId("recording").parentElement ?? document.body);
else new Page().show();
