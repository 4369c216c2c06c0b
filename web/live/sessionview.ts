// Shows the session as a whole: input, room, scopes, boundaries, warnings, and what can be saved.

import { byId, element, table } from "../shared/dom";
import { clock, counted, plain } from "../shared/text";
import { order, save } from "./orders";
import { Boundary, Input, personName, Room, Session, Verdict } from "./session";

const nanoseconds = 1e9;

function facts(entries: [string, string][]): HTMLElement[] {
  return entries.map(([name, value]) => element("div", {}, element("dt", {}, name), element("dd", {}, value)));
}

function delayText({ delay }: Input): string {
  if (delay === null) return "unknown";
  return Math.abs(delay) < 10 ? `${Math.round(1000 * delay)} ms`.replace("-", "−") : `${plain(delay, 1)} s`;
}

function roomText(room: Room | null): string {
  if (!room) return "unknown";
  return `${room.excited ? "excited" : "calm"}, agitation ${plain(room.agitation)}`;
}

function heading(title: string, hint: string): HTMLElement {
  return element("h2", {}, title, " ", element("small", {}, hint));
}

function button(text: string, press: () => void): HTMLButtonElement {
  const made = element("button", { type: "button" }, text);
  made.addEventListener("click", press);
  return made;
}

/** Runs `show` again only where what it shows has changed: a field that somebody edits stays as it is. */
class Part<Shown> {
  private before: Shown | undefined;

  constructor(private readonly show: (shown: Shown) => void) {}

  update(shown: Shown): void {
    if (shown === this.before) return;
    this.before = shown;
    this.show(shown);
  }
}

export class SessionView {
  private readonly openScopes = element("ul", { class: "open" });
  private readonly verdictTable = element("div", { class: "scroll" });
  private readonly putBackButton = button("Put back", () => void this.ask({ putBack: true }));
  private readonly boundaryRows = element("div", {});
  private readonly warningList = element("ul", {});

  private readonly scopes = new Part<string[]>((names) => this.showScopes(names));
  private readonly verdicts = new Part<Verdict[]>((all) => this.showVerdicts(all));
  private readonly boundaries = new Part<Boundary[]>((all) => this.showBoundaries(all));
  private readonly warnings = new Part<Session["warnings"]>((all) => this.showWarnings(all));

  constructor(
    private readonly session: Session,
    private readonly say: (message: string) => void,
  ) {
    this.addScopes();
    this.addBoundaries();
    this.addSave();
    byId("warnings").append(heading("Warnings", "of the input and of the library"), this.warningList);
  }

  show(): void {
    const { input, room } = this.session;
    if (input) this.showInput(input, room);
    this.scopes.update(this.session.scopes);
    this.verdicts.update(this.session.verdicts);
    this.boundaries.update(this.session.boundaries);
    this.warnings.update(this.session.warnings);
  }

  /** Returns whether it was done. */
  private ask(what: object): Promise<boolean> {
    return order(what).then(
      () => {
        this.say("");
        return true;
      },
      (error: Error) => {
        this.say(error.message);
        return false;
      },
    );
  }

  private showInput(input: Input, room: Room | null): void {
    const title = input.name.split("/").pop() || "Live session";
    if (byId("title").textContent !== title) {
      byId("title").textContent = title;
      document.title = `${title} · skeigiot live`;
    }
    const unit = input.unit;
    const entries: [string, string][] = [
      ["persons", String(this.session.persons.size + input.others)],
      ["time", clock(this.session.now)],
      [`${unit} a second`, input.ended ? "ended" : plain(input.rate, 1)],
      ["delay of readings", delayText(input)],
      ["room", roomText(room)],
      [`${unit} refused`, input.refused.toLocaleString("en")],
    ];
    if (input.name && input.speed !== 1) entries.push(["speed", `${input.speed}×`]);
    byId("input").replaceChildren(...facts(entries));
    byId("others").textContent = input.others > 0 ? `${counted(input.others, "more person")} not shown: the page shows 64 at most.` : "";
  }

  private addScopes(): void {
    const name = element("input", { id: "scope", type: "text", maxlength: "100", "aria-label": "Name of the scope", placeholder: "name" });
    const form = element("form", { class: "row" }, name, element("button", {}, "Start scope"));
    form.addEventListener("submit", (event) => {
      event.preventDefault();
      const asked = name.value;
      void this.ask({ startScope: asked.trim() }).then((isDone) => {
        if (isDone && name.value === asked) name.value = "";
      });
    });
    byId("scopes").append(heading("Scopes", "spans of time that get a verdict"), form, this.openScopes, this.verdictTable);
  }

  private showScopes(names: string[]): void {
    this.openScopes.replaceChildren(
      ...names.map((name) => element("li", {}, `${name} is open `, button("Stop", () => void this.ask({ stopScope: name })))),
    );
  }

  private showVerdicts(all: Verdict[]): void {
    const rows = [...all].reverse().flatMap(({ scope, from, to, end, persons }) => {
      const span = `${clock(from / nanoseconds)} to ${clock(to / nanoseconds)}`;
      if (persons.length === 0) return [[scope, span, end === "not open" ? "was not open" : "nobody", "", ""]];
      return persons.map((person) => [scope, span, personName(person), person.verdict, String(person.updates)]);
    });
    const headings = ["scope", "from, to", "person", "verdict", "updates"];
    this.verdictTable.replaceChildren(...(rows.length > 0 ? [table("", headings, rows, [4])] : []));
  }

  private addBoundaries(): void {
    byId("boundaries").append(heading("Boundaries", "values from which a word such as \"positive\" is used"), this.boundaryRows, this.putBackButton);
  }

  private showBoundaries(all: Boundary[]): void {
    const focused = document.activeElement?.id;
    this.boundaryRows.replaceChildren(
      ...all.map(({ option, description, interval, value }) => {
        const shown = String(Number(value.toFixed(6)));
        const field = element("input", { id: option, type: "number", step: "0.05", value: shown, title: `lies ${interval}` });
        field.addEventListener("change", () => void this.ask({ boundary: option, value: field.valueAsNumber }).then((isDone) => {
          if (!isDone) field.value = shown;
        }));
        return element("p", { class: "row" }, element("label", { for: option }, description), field);
      }),
    );
    this.putBackButton.disabled = all.every(({ value, first }) => value === first);
    if (focused) document.getElementById(focused)?.focus();
  }

  private addSave(): void {
    const saving = (what: string, path: string, name: string) => {
      const made = button(what, () => {
        made.disabled = true;
        this.say(`${name} is being made.`);
        save(path, name)
          .then(
            () => this.say(`${name} is saved.`),
            (error: Error) => this.say(error.message),
          )
          .finally(() => (made.disabled = false));
      });
      return made;
    };
    byId("save").append(
      heading("Save", "the session so far"),
      element(
        "p",
        { class: "row" },
        saving("Recording (JSON Lines)", "/recording.jsonl", "recording.jsonl"),
        saving("Report (HTML)", "/report.html", "report.html"),
      ),
      element(
        "p",
        { class: "note" },
        "A replay of the recording gives the same estimates. The report is made with the boundaries as they are now.",
      ),
    );
  }

  private showWarnings(all: Session["warnings"]): void {
    const texts = [...all].reverse().map(({ text }) => element("li", {}, text));
    this.warningList.replaceChildren(...(texts.length > 0 ? texts : [element("li", { class: "note" }, "none")]));
  }
}
