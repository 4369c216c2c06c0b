// The tabs of persons: a few or some dozens of them.

import { Person, personName, Recording } from "./data";
import { element } from "../shared/dom";
import { clock } from "../shared/text";

/** Digits that are typed so quickly one after the other are one number [ms]. */
const typingPause = 900;

/** Returns a strip that shows when the person was present, under the name. */
function presence({ summary }: Person, length: number): HTMLElement {
  const percentOf = (time: number) => ((100 * time) / Math.max(length, 1e-3)).toFixed(2);
  const style = `left:${percentOf(summary.from)}%;width:max(2px,${percentOf(summary.to - summary.from)}%)`;
  return element("span", { class: "presence", "aria-hidden": "true" }, element("span", { style }));
}

export class PersonTabs {
  private typed = "";
  private typedAt = -Infinity;

  constructor(
    private readonly target: HTMLElement,
    private readonly recording: Recording,
    private readonly select: (number: number) => void,
  ) {}

  /** Shows a tab for each person, with this one selected. */
  show(selected: Person | undefined): void {
    const { persons } = this.recording;
    const hadFocus = this.hasFocus();
    const buttons = persons.map((person, number) => this.tab(person, number, person === selected));
    this.target.toggleAttribute("hidden", persons.length === 0);
    this.target.replaceChildren(...buttons);
    const current = buttons[persons.findIndex((person) => person === selected)];
    if (!current) return;
    if (hadFocus) current.focus({ preventScroll: true });
    this.scrollTo(current);
  }

  hasFocus(): boolean {
    return this.target.contains(document.activeElement);
  }

  /** Takes a key while a tab has the focus; returns whether it was one of the tabs' keys. */
  keyPressed(key: string, selected: Person | undefined): boolean {
    const { persons } = this.recording;
    const current = selected ? persons.indexOf(selected) : 0;
    const next = {
      ArrowLeft: (current - 1 + persons.length) % persons.length,
      ArrowRight: (current + 1) % persons.length,
      Home: 0,
      End: persons.length - 1,
    }[key];
    if (next === undefined) return false;
    this.select(next);
    return true;
  }

  /** Takes a digit typed at `now` [ms]: "1" then "2" is the twelfth person, if there are so many. */
  digitTyped(digit: string, now: number): void {
    const { length } = this.recording.persons;
    const goesOn = now - this.typedAt < typingPause && Number(this.typed + digit) <= length;
    this.typed = goesOn ? this.typed + digit : digit;
    this.typedAt = now;
    const number = Number(this.typed);
    if (number >= 1 && number <= length) this.select(number - 1);
  }

  private tab(person: Person, number: number, isSelected: boolean): HTMLButtonElement {
    const { from, to } = person.summary;
    const button = element(
      "button",
      {
        id: `tab-${number}`,
        type: "button",
        role: "tab",
        title: `present ${clock(from)} to ${clock(to)}`,
        "data-person": String(person.id),
        "aria-selected": String(isSelected),
        "aria-controls": "person",
        tabindex: isSelected ? "0" : "-1",
      },
      personName(person),
      element("kbd", { "aria-hidden": "true" }, String(number + 1)),
      presence(person, this.recording.length),
    );
    button.addEventListener("click", () => this.select(number));
    return button;
  }

  /** Scrolls the tabs, and never the page. */
  private scrollTo({ offsetTop, offsetLeft, offsetWidth, offsetHeight }: HTMLElement): void {
    const { target } = this;
    target.scrollLeft = Math.min(Math.max(target.scrollLeft, offsetLeft + offsetWidth - target.clientWidth), offsetLeft);
    target.scrollTop = Math.min(Math.max(target.scrollTop, offsetTop + offsetHeight - target.clientHeight), offsetTop);
  }
}
