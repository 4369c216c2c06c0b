// Puts the page together, and lets it be used with mouse and keyboard.

import { ChartGroup } from "../shared/chartgroup";
import { nearest, Person, readRecording } from "./data";
import { byId, element } from "../shared/dom";
import { readFolder, showFolder } from "./folder";
import { showNothingPinned, showPinned, showReadout } from "./momentview";
import { addRoom, personFacts, showHeader, showRecording } from "./overview";
import { PersonView } from "./personview";

const cardPadding = 30;
const bigStep = 1; // [s]
const printedWidth = 640;

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
    " pins it; numbers choose the person",
  );
}

class Page {
  private readonly recording = readRecording(byId("data").textContent ?? "");
  private person: Person | undefined = this.recording.persons[0];
  private moment = 0;
  private pinned: number | null = null;
  private group: ChartGroup | undefined;
  private isPrinting = false;
  private view: PersonView | undefined;

  show(): void {
    showHeader(byId("header"), this.recording);
    showRecording(byId("recording"), this.recording);
    this.showPersons();
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
    const buttons = this.recording.persons.map((person, number) => {
      const isSelected = person === this.person;
      const button = element(
        "button",
        {
          id: `tab-${number}`,
          type: "button",
          role: "tab",
          "data-person": String(person.id),
          "aria-selected": String(isSelected),
          "aria-controls": "person",
          tabindex: isSelected ? "0" : "-1",
        },
        `Person ${person.id}`,
        number < 9 ? element("kbd", { "aria-hidden": "true" }, String(number + 1)) : null,
      );
      button.addEventListener("click", () => this.select(number));
      if (isSelected) byId("person").setAttribute("aria-labelledby", button.id);
      return button;
    });
    byId("persons").replaceChildren(...buttons, keyHint());
  }

  private select(number: number): void {
    const person = this.recording.persons[number];
    if (!person || person === this.person) return;
    const hadFocus = byId("persons").contains(document.activeElement);
    const time = this.person?.time[this.moment] ?? 0;
    const pinnedTime = this.pinned === null ? null : (this.person?.time[this.pinned] ?? null);
    this.person = person;
    this.moment = nearest(person.time, time);
    this.pinned = pinnedTime === null ? null : nearest(person.time, pinnedTime);
    this.showPersons();
    this.showAll();
    if (hadFocus) byId(`tab-${number}`).focus();
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
      this.view = new PersonView(this.recording, this.person, group, byId("estimates"), byId("details"));
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
    else showPinned(byId("pinned"), this.recording, this.person, this.pinned);
    this.group?.markPinned(this.pinned === null ? null : (this.person?.time[this.pinned] ?? null));
  }

  private keyPressed(event: KeyboardEvent): void {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    const isInTabs = byId("persons").contains(document.activeElement);
    const isHandled = (isInTabs && this.keyInTabs(event)) || this.keyAnywhere(event, isInTabs);
    if (isHandled) event.preventDefault();
  }

  private keyInTabs({ key }: KeyboardEvent): boolean {
    const count = this.recording.persons.length;
    const current = this.person ? this.recording.persons.indexOf(this.person) : 0;
    const step = { ArrowLeft: -1, ArrowRight: 1 }[key];
    if (step === undefined) return false;
    this.select((current + step + count) % count);
    return true;
  }

  private keyAnywhere({ key, shiftKey }: KeyboardEvent, isInTabs: boolean): boolean {
    const step = { ArrowLeft: -1, ArrowRight: 1 }[key];
    if (step !== undefined && this.person) {
      if (shiftKey) this.moveTo(this.person.time[this.moment] + step * bigStep);
      else this.goTo(this.moment + step);
      return true;
    }
    if (/^[1-9]$/.test(key)) {
      this.select(Number(key) - 1);
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
        if (isInTabs) return false;
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
