// The tabs of persons. A tab stays the same element while its texts change, so that it keeps the focus.

import { element } from "../shared/dom";
import { signed, valenceWord, zoneArrow, zoneWord } from "../shared/text";
import { lastMoment, Person, personName } from "./session";

/** Digits that are typed so quickly one after the other are one number [ms]. */
const typingPause = 900;

function setText(node: Element, text: string): void {
  if (node.textContent !== text) node.textContent = text;
}

interface Tab {
  button: HTMLButtonElement;
  name: HTMLElement;
  key: HTMLElement;
  state: HTMLElement;
}

export class Tabs {
  private readonly tabs = new Map<number, Tab>();
  private shown: number[] = [];
  private typed = "";
  private typedAt = -Infinity;

  constructor(
    private readonly target: HTMLElement,
    private readonly select: (id: number) => void,
  ) {}

  /** Shows a tab for each person, in the order of their numbers. */
  show(persons: Person[], selected: number | undefined): void {
    this.shown = persons.map(({ id }) => id);
    for (const [id, { button }] of this.tabs)
      if (!this.shown.includes(id)) {
        button.remove();
        this.tabs.delete(id);
      }
    persons.forEach((person, place) => {
      const tab = this.tabs.get(person.id) ?? this.add(person.id);
      if (this.target.children[place] !== tab.button) this.target.insertBefore(tab.button, this.target.children[place] ?? null);
      this.update(tab, person, place, person.id === selected);
    });
    this.target.toggleAttribute("hidden", persons.length === 0);
  }

  hasFocus(): boolean {
    return this.target.contains(document.activeElement);
  }

  /** Takes a key while a tab has the focus; returns whether it was one of the tabs' keys. */
  keyPressed(key: string, selected: number | undefined): boolean {
    const { length } = this.shown;
    const current = Math.max(0, this.shown.indexOf(selected ?? NaN));
    const next = {
      ArrowLeft: (current - 1 + length) % length,
      ArrowRight: (current + 1) % length,
      Home: 0,
      End: length - 1,
    }[key];
    if (next === undefined || length === 0) return false;
    this.select(this.shown[next]);
    this.tabs.get(this.shown[next])?.button.focus();
    return true;
  }

  /** Takes a digit typed at `now` [ms]: "1" then "2" is the twelfth person, if there are so many. */
  digitTyped(digit: string, now: number): void {
    const { length } = this.shown;
    const goesOn = now - this.typedAt < typingPause && Number(this.typed + digit) <= length;
    this.typed = goesOn ? this.typed + digit : digit;
    this.typedAt = now;
    const place = Number(this.typed) - 1;
    if (place >= 0 && place < length) this.select(this.shown[place]);
  }

  private add(id: number): Tab {
    const name = element("span", {});
    const key = element("kbd", { "aria-hidden": "true" });
    const state = element("small", {});
    const button = element(
      "button",
      { id: `tab-${id}`, type: "button", role: "tab", "data-person": String(id), "aria-controls": "person" },
      name,
      key,
      state,
    );
    button.addEventListener("click", () => this.select(id));
    const tab = { button, name, key, state };
    this.tabs.set(id, tab);
    return tab;
  }

  private update({ button, name, key, state }: Tab, person: Person, place: number, isSelected: boolean): void {
    const { seen, zone, valence, valenceKnown } = lastMoment(person);
    const mood = valenceKnown ? `${signed(valence)} ${valenceWord(valence)}` : "unknown";
    const look = seen ? `${zoneArrow(zone)} ${zoneWord(zone)}`.trim() : "not visible";
    setText(name, personName(person));
    setText(key, String(place + 1));
    setText(state, `${mood}, ${look}`);
    button.setAttribute("aria-selected", String(isSelected));
    button.tabIndex = isSelected ? 0 : -1;
  }
}
