// Composes the page of a study.

import { byId, element, facts, table } from "../shared/dom";
import { clock, counted } from "../shared/text";
import { paperWidth } from "./card";
import { Comparison, optionsText, Quantity, Study, titleOf, valueIn, wholeRecording } from "./data";
import { groupsCard, groupsNote } from "./groups";
import { sessionsCard } from "./pictures";
import { agreementCard, verdictsCard } from "./verdicts";

const cardPadding = 30;
const quantities: Quantity[] = ["valence", "attention", "engaged", "seen"];

const exampleText = `import skeigiot
import statsmodels.formula.api as smf

means = skeigiot.open_results("results.sqlite").means("whole recording")
means = means[means.status == "complete"].dropna(subset=["valence"])
model = smf.mixedlm("valence ~ condition", means, groups=means.participant)
print(model.fit().summary())`;

interface Shown {
  card: HTMLElement;
  show(): void;
}

class Page {
  private readonly study = JSON.parse(byId("data").textContent ?? "") as Study;
  private scope = this.study.scopes.includes(wholeRecording) ? wholeRecording : (this.study.scopes[0] ?? "");
  private by = "condition";
  private compared: Shown[] = [];
  private others: Shown[] = [];
  private isPrinting = false;
  private width = 0;

  show(): void {
    this.showHeader();
    this.showComparison();
    this.showScopes();
    this.showSessions();
    this.showTroubles();
    this.showTests();
    this.drawAll();
    new ResizeObserver(() => this.resized()).observe(byId("comparison"));
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => this.recolored());
    addEventListener("beforeprint", () => this.setPrinting(true));
    addEventListener("afterprint", () => this.setPrinting(false));
  }

  private showHeader(): void {
    const { counts, files, study } = this.study;
    const title = titleOf(this.study);
    document.title = `${title} · skeigiot`;
    const notComplete = counts.sessions - counts.complete;
    byId("header").replaceChildren(
      element("p", { class: "eyebrow" }, "skeigiot study: figures of the results"),
      element("h1", {}, title),
      facts([
        ["sessions", counts.sessions.toLocaleString("en")],
        ["complete", counts.complete.toLocaleString("en")],
        ...(notComplete > 0 ? [["not compared", notComplete.toLocaleString("en")] as [string, string]] : []),
        ["persons", counts.persons.toLocaleString("en")],
        ["conditions", counts.conditions.toLocaleString("en")],
        ["duration of complete sessions", clock(counts.length, 0)],
      ]),
      element(
        "dl",
        { class: "origin", "aria-label": "How this page came about" },
        ...(
          [
            [files.length === 1 ? "file" : "files", files.join(", ")],
            ["options", optionsText(this.study) || "none: all as by default"],
            ["made by", `skeigiot ${valueIn(study, "version")}`],
          ] as const
        ).map(([name, value]) => element("div", {}, element("dt", {}, name), element("dd", {}, element("p", {}, value)))),
      ),
    );
  }

  private choice(name: string, values: string[], selected: string, choose: (value: string) => void): HTMLElement {
    const options = values.map((value) => element("option", { value, ...(value === selected ? { selected: "" } : {}) }, value));
    const select = element("select", {}, ...options);
    select.addEventListener("change", () => choose(select.value));
    return element("label", {}, name, select);
  }

  private find(quantity: Quantity, scope: string, by: string): Comparison | undefined {
    return this.study.comparisons.find((one) => one.quantity === quantity && one.scope === scope && one.by === by);
  }

  private showComparison(): void {
    const { scopes, factors, factorCount, counts } = this.study;
    const redraw = () => {
      this.placeComparison();
      this.drawAll();
    };
    const choices = element(
      "div",
      { class: "choices" },
      this.choice("Scope", scopes, this.scope, (value) => {
        this.scope = value;
        redraw();
      }),
      this.choice("Groups", ["condition", ...factors], this.by, (value) => {
        this.by = value;
        redraw();
      }),
    );
    const limits = [
      counts.scopes > scopes.length
        ? `The page compares ${scopes.length} of ${counted(counts.scopes, "scope")}: those that most sessions have.`
        : "",
      factorCount > factors.length ? `The page compares ${factors.length} of ${counted(factorCount, "placeholder")}.` : "",
    ].filter((line) => line !== "");
    byId("comparison").replaceChildren(
      element("h2", {}, "Groups side by side"),
      choices,
      element("p", { class: "note" }, groupsNote),
      ...limits.map((line) => element("p", { class: "note limit" }, line)),
      element("div", { class: "pair", id: "compared" }),
    );
    this.placeComparison();
  }

  private placeComparison(): void {
    const found = quantities.map((quantity) => this.find(quantity, this.scope, this.by)).filter((one) => one !== undefined);
    this.compared = (found as Comparison[]).map((one) => groupsCard(this.study, one, (card) => this.chartWidth(card)));
    byId("compared").replaceChildren(
      ...(this.compared.length > 0
        ? this.compared.map(({ card }) => card)
        : [element("p", { class: "card" }, "No complete session has numbers for this choice.")]),
    );
  }

  private showScopes(): void {
    const { labels } = this.study;
    const width = (card: HTMLElement) => this.chartWidth(card);
    const byScope = (["valence", "attention"] as const).map((quantity) => this.find(quantity, "", "scope"));
    this.others = byScope.flatMap((one) => (one ? [groupsCard(this.study, one, width)] : []));
    if (labels.verdicts.length > 0) this.others.push(verdictsCard(this.study, width));
    byId("scopes").replaceChildren(
      element("h2", {}, "Scopes and verdicts"),
      element("div", { class: "pair" }, ...this.others.map(({ card }) => card), labels.agreement ? agreementCard(labels.agreement) : null),
    );
  }

  private showSessions(): void {
    byId("sessions").replaceChildren(element("h2", {}, "Sessions"), sessionsCard(this.study));
  }

  private showTroubles(): void {
    const { sessions, warnings, nobody, valenceUnknown, attentionUnknown } = this.study.troubles;
    const facts = [
      nobody > 0 ? `${counted(nobody, "complete session")} in which nobody was seen.` : "",
      valenceUnknown > 0 ? `Valence was never known of ${counted(valenceUnknown, "person")} in a complete session.` : "",
      attentionUnknown > 0 ? `Attention was never known of ${counted(attentionUnknown, "person")} in a complete session.` : "",
    ].filter((line) => line !== "");
    const list = (title: string, headings: string[], { all, rows }: { all: number; rows: string[][] }, none: string) =>
      element(
        "div",
        { class: "card long" },
        all === 0
          ? element("p", { class: "sentence" }, none)
          : element("div", { class: "scroll rows verdicts", tabindex: "0", role: "group", "aria-label": title },
              table(`${title}: ${all.toLocaleString("en")}`, headings, rows)),
        all > rows.length ? element("p", { class: "note limit" }, `The page lists the first ${rows.length.toLocaleString("en")}; the results have all.`) : null,
      );
    byId("troubles").replaceChildren(
      element("h2", {}, "What was left out, and why"),
      element("p", { class: "note" }, "Only complete sessions are compared. A mean is left out where the estimate was never known. ", facts.join(" ")),
      list("Sessions that are not compared", ["session", "status", "reason"], sessions, "All sessions are complete."),
      list("Warnings", ["session", "kind", "warning"], warnings, "There is no warning."),
    );
  }

  private showTests(): void {
    byId("tests").replaceChildren(
      element("h2", {}, "Tests of significance"),
      element(
        "div",
        { class: "card" },
        element("p", {}, "This page has no test of significance. The means of each person, session and scope are in the results, for R or for statsmodels in Python:"),
        element("pre", {}, element("code", {}, exampleText)),
        element("p", { class: "note" }, "The model has a mean for each condition, and a deviation of each person. In R, dbGetQuery() of the package DBI reads the same table; the manual of studies has an example."),
      ),
    );
  }

  private drawAll(): void {
    for (const { show } of [...this.compared, ...this.others]) show();
    this.width = byId("comparison").clientWidth;
  }

  /** Draws again everything that has the colours of the moment: legends and canvases. */
  private recolored(): void {
    this.showScopes();
    this.showSessions();
    this.drawAll();
  }

  /** Paper is light, and of its own width. */
  private setPrinting(isPrinting: boolean): void {
    document.documentElement.toggleAttribute("data-print", isPrinting);
    this.isPrinting = isPrinting;
    this.recolored();
  }

  private chartWidth(card: HTMLElement): number {
    if (this.isPrinting) return paperWidth;
    return Math.max(220, card.clientWidth - (innerWidth <= 560 ? 14 : cardPadding));
  }

  private resized(): void {
    if (byId("comparison").clientWidth !== this.width) this.drawAll();
  }
}

new Page().show();
