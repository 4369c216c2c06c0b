// Composes the page, and handles mouse and keyboard.

import { ChartGroup, ChartGroupEvents } from "../shared/chartgroup";
import { greatestChange, nearest, Person, personName, readRecording } from "./data";
import { byId, element } from "../shared/dom";
import { readFolder, showFolder } from "./folder";
import { showNothingPinned, showPinned, showReadout } from "./momentview";
import { figureOf } from "../shared/figure";
import { Film } from "./film";
import { addRoom, baseTitle, captionOf, personFacts, showHeader, showRecording } from "./overview";
import { PersonTabs } from "./persons";
import { barsIn, PersonView } from "./personview";
import { fileName, FileKind, savePng, saveText } from "../shared/save";
import { csvOf, FigureName } from "./tables";

const cardPadding = 30;
const bigStep = 1; // [s]
const paperWidth = 670; // of a page of A4 without its margins and those of a card [px]

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
  private film: Film | undefined;
  private view: PersonView | undefined;

  show(): void {
    showHeader(byId("header"), this.recording);
    showRecording(byId("recording"), this.recording);
    this.showPersons();
    byId("keys").replaceChildren(keyHint());
    this.showAll();
    this.showFilm();
    document.addEventListener("keydown", (event) => this.keyPressed(event));
    new ResizeObserver(() => this.resized()).observe(byId("estimates"));
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => this.showAll());
    addEventListener("beforeprint", () => this.setPrinting(true));
    addEventListener("afterprint", () => this.setPrinting(false));
  }

  private showFilm(): void {
    const { video } = this.recording;
    if (!video) return;
    this.film = new Film(byId("film"), video, (shown) => {
      if (this.person) this.showAt(nearest(this.person.time, shown));
    });
    this.film.show(this.person?.time[this.moment] ?? 0);
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
    const events: ChartGroupEvents = {
      hover: (time) => this.hovered(time),
      pick: (time) => {
        this.moveTo(time);
        this.pin(this.moment);
      },
      range: () => this.view?.rangeChanged(),
    };
    const group = new ChartGroup(this.length(), this.chartWidth(), events, this.isPrinting);
    this.group = group;
    group.from = from;
    group.to = to;
    group.markPinned(this.pinnedTime());
    if (this.person) {
      this.view = this.viewIn(this.person, group, byId("estimates"), byId("details"));
      byId("estimates").prepend(personFacts(this.person));
    } else byId("estimates").replaceChildren(element("p", { class: "card" }, "Nobody was seen in this recording."));
    addRoom(byId("details"), this.recording, group, (kind) => this.save("room", kind));
    group.placeDrawings();
    this.showMoment();
    this.showPinned();
  }

  private pinnedTime(): number | null {
    return this.pinned === null ? null : (this.person?.time[this.pinned] ?? null);
  }

  private length(): number {
    return Math.max(this.recording.length, 1e-3);
  }

  private viewIn(person: Person, group: ChartGroup, estimates: HTMLElement, details: HTMLElement): PersonView {
    return new PersonView(this.recording, person, group, estimates, details, {
      select: (number) => this.select(number),
      save: (figure, kind) => this.save(figure, kind),
    });
  }

  /** Saves the present figure: its person, its time span, and the moment that is pinned. */
  private async save(figure: FigureName, kind: FileKind): Promise<void> {
    const { person, group, recording } = this;
    if (!person || !group) return;
    const caption = captionOf(recording, person, group);
    const name = `${fileName(baseTitle(recording), personName(person), figure)}.${kind.toLowerCase()}`;
    if (kind === "CSV") {
      const bars = barsIn(byId("details").querySelector<HTMLElement>(`[data-figure="${figure}"]`)?.clientWidth ?? 0);
      saveText(csvOf(figure, recording, person, group, bars, caption), "text/csv", name);
      return;
    }
    const svg = this.onPaper((paper, cards) => {
      const card = cards.querySelector(`[data-figure="${figure}"]`);
      return card ? figureOf(card, paper, paperWidth, caption) : "";
    });
    if (kind === "SVG") saveText(svg, "image/svg+xml", name);
    else await savePng(svg, name);
  }

  /** Draws all charts on paper, beside the page, for as long as `use` runs. */
  private onPaper<Result>(use: (group: ChartGroup, cards: HTMLElement) => Result): Result {
    const root = document.documentElement;
    const wasPaper = root.hasAttribute("data-print");
    root.toggleAttribute("data-print", true);
    const paper = new ChartGroup(this.length(), paperWidth, { hover() {}, pick() {}, range() {} }, true);
    const [estimates, details] = [element("div"), element("div")];
    const cards = element("div", { class: "paper", style: `width:${paperWidth + cardPadding}px` }, estimates, details);
    document.body.append(cards);
    try {
      paper.from = this.group?.from ?? 0;
      paper.to = this.group?.to ?? this.recording.length;
      paper.markPinned(this.pinnedTime());
      if (this.person) this.viewIn(this.person, paper, estimates, details);
      addRoom(details, this.recording, paper, async () => {});
      return use(paper, cards);
    } finally {
      paper.destroy();
      cards.remove();
      root.toggleAttribute("data-print", wasPaper);
    }
  }

  private chartWidth(): number {
    if (this.isPrinting) return paperWidth;
    return Math.max(240, byId("estimates").clientWidth - (innerWidth <= 560 ? 14 : cardPadding));
  }

  private resized(): void {
    this.group?.resize(this.chartWidth());
    this.view?.rangeChanged();
  }

  /** A video that plays moves the cursor. */
  private hovered(time: number): void {
    if (!this.film?.isPlaying) this.moveTo(time);
  }

  private moveTo(time: number): void {
    if (this.person) this.goTo(nearest(this.person.time, time));
  }

  private goTo(moment: number): void {
    if (!this.person) return;
    this.showAt(Math.min(Math.max(moment, 0), this.person.time.length - 1));
    this.film?.show(this.person.time[this.moment]);
  }

  private showAt(moment: number): void {
    this.moment = moment;
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
    this.group?.markPinned(this.pinnedTime());
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
      case " ":
        if (!this.film || target instanceof HTMLButtonElement || target instanceof HTMLVideoElement) return false;
        this.film.toggle();
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
