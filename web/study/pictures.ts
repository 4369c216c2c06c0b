// All sessions as small pictures: valence above, attention below.

import { Cell, csvText } from "../shared/csv";
import { element } from "../shared/dom";
import { Box, curvePath, heightOf, svg } from "../shared/smallpicture";
import { RecordedPath, SvgContext } from "../shared/svgcontext";
import { clock, counted, plain, signed } from "../shared/text";
import { cssColor, font, lineSwatch, shortened } from "../shared/theme";
import { Drawn, figureCard } from "./card";
import { captionOf, personOf, Session, SessionPerson, Study, Thousandths, titleOf } from "./data";

const pictureWidth = 150;
const pictureHeight = 62;
const lanes: { valence: Box; attention: Box } = {
  valence: { x: 0, y: 2, width: pictureWidth, height: 34 },
  attention: { x: 0, y: 42, width: pictureWidth, height: 18 },
};
const least = { valence: -1, attention: 0 };
const quantities = ["valence", "attention"] as const;
const mostWithoutBox = 120; // pictures; more have a box that scrolls
const paperColumns = 5;
const paperGap = 10;
const captionHeight = 15;

type Quantity = (typeof quantities)[number];

const ones = (values: Thousandths) => values.map((value) => (value === null ? null : value / 1000));

/** Returns the path of a quantity: a curve, or a level line for each scope. */
function pathOf(person: SessionPerson, quantity: Quantity, length: number): string {
  const box = lanes[quantity];
  const values = quantity === "valence" ? person.valenceCurve : person.attentionCurve;
  if (values) return curvePath(ones(values), least[quantity], box);
  return (person.scopes ?? [])
    .map(([, from, to, valence, attention]) => {
      const value = quantity === "valence" ? valence : attention;
      if (value === null || length <= 0) return "";
      const x = (time: number) => ((Math.min(Math.max(time, 0), length) / length) * pictureWidth).toFixed(1);
      return `M${x(from)} ${heightOf(value / 1000, least[quantity], box).toFixed(1)}H${x(to)}`;
    })
    .join("");
}

function meanText(person: SessionPerson): string {
  const text = (value: number | null | undefined, of: (value: number) => string) =>
    value === null || value === undefined ? "unknown" : of(value / 1000);
  return `mean valence ${text(person.valence, signed)}, mean attention ${text(person.attention, plain)}`;
}

/** Returns the name of the session, and of the person where it has several. */
function nameOf(session: Session, person: SessionPerson | undefined): string {
  return person && session.personCount > 1 ? `${session.name}, ${personOf(person)}` : session.name;
}

function statusOf({ status, personCount }: Session): string {
  if (status !== "complete") return status;
  return personCount === 0 ? "nobody was seen" : "";
}

/** A picture of each person, or one without lines if there is no person. */
function picturesOf(session: Session): { session: Session; person: SessionPerson | undefined }[] {
  return session.persons.length > 0
    ? session.persons.map((person) => ({ session, person }))
    : [{ session, person: undefined }];
}

function figureFor(session: Session, person: SessionPerson | undefined): HTMLElement {
  const status = statusOf(session);
  const name = nameOf(session, person);
  const caption = element("figcaption", { title: name }, name, status ? element("small", {}, ` ${status}`) : null);
  if (!person) return element("figure", { class: "session" }, element("p", { class: "none note" }, session.personCount > 0 ? "no picture" : "no data"), caption);
  const length = session.length ?? 0;
  const rect = ({ x, y, width, height }: Box) =>
    svg("rect", { class: "lane", x: String(x), y: String(y - 2), width: String(width), height: String(height + 4) });
  const zero = heightOf(0, -1, lanes.valence).toFixed(1);
  return element(
    "figure",
    { class: "session" },
    svg(
      "svg",
      {
        class: "small",
        viewBox: `0 0 ${pictureWidth} ${pictureHeight}`,
        preserveAspectRatio: "none",
        role: "img",
        "aria-label": `${name}, ${clock(length)}: ${meanText(person)}`,
      },
      rect(lanes.valence),
      rect(lanes.attention),
      svg("line", { class: "zero", x1: "0", x2: String(pictureWidth), y1: zero, y2: zero }),
      ...quantities.map((quantity) =>
        svg("path", { class: quantity, d: pathOf(person, quantity, length), "vector-effect": "non-scaling-stroke" }),
      ),
    ),
    caption,
  );
}

type Picture = ReturnType<typeof picturesOf>[number];

/** The pictures of one condition, on paper. */
class PaperGrid implements Drawn {
  constructor(private readonly pictures: Picture[]) {}

  height(): number {
    return Math.ceil(this.pictures.length / paperColumns) * (pictureHeight + captionHeight + paperGap);
  }

  draw(context: CanvasRenderingContext2D, width: number): void {
    const column = (width - (paperColumns - 1) * paperGap) / paperColumns;
    this.pictures.forEach(({ session, person }, i) => {
      context.save();
      context.scale(devicePixelRatio, devicePixelRatio);
      context.translate((i % paperColumns) * (column + paperGap), Math.floor(i / paperColumns) * (pictureHeight + captionHeight + paperGap));
      this.drawPicture(context, session, person, column);
      context.restore();
    });
  }

  private drawPicture(context: CanvasRenderingContext2D, session: Session, person: SessionPerson | undefined, width: number): void {
    context.font = font(10);
    context.textAlign = "left";
    context.fillStyle = cssColor("text");
    const status = statusOf(session);
    const name = nameOf(session, person) + (status ? ` ${status}` : "");
    context.fillText(shortened(context, name, width), 0, pictureHeight + 11);
    context.scale(width / pictureWidth, 1);
    context.fillStyle = cssColor("lane");
    for (const { x, y, width: wide, height } of Object.values(lanes)) context.fillRect(x, y - 2, wide, height + 4);
    if (!person) return;
    const stroke = (color: string, data: string, lineWidth: number) => {
      const path = new RecordedPath();
      path.data = data;
      context.strokeStyle = cssColor(color);
      context.lineWidth = lineWidth;
      (context as unknown as SvgContext).stroke(path);
    };
    const zero = heightOf(0, -1, lanes.valence);
    stroke("line", `M0 ${zero}H${pictureWidth}`, 1);
    for (const quantity of quantities) stroke(quantity, pathOf(person, quantity, session.length ?? 0), 1.4);
  }
}

/** Returns the numbers of all pictures. */
export function csvOfPictures({ pictures }: Study, caption: string[]): string {
  const unit = (value: number | null) => (value === null ? null : value / 1000);
  const time = (seconds: number) => Number(seconds.toFixed(6));
  const rows: Cell[][] = [];
  for (const session of pictures.sessions)
    for (const person of session.persons) {
      const start = [session.name, session.condition, person.participant, person.id, person.name, person.role];
      const { valenceCurve, attentionCurve, scopes } = person;
      const stretch = (session.length ?? 0) / pictures.stretches;
      valenceCurve?.forEach((valence, i) =>
        rows.push([...start, "", time(i * stretch), time((i + 1) * stretch), unit(valence), unit(attentionCurve?.[i] ?? null)]),
      );
      for (const [scope, from, to, valence, attention] of scopes ?? [])
        rows.push([...start, pictures.scopeNames[scope], from, to, unit(valence), unit(attention)]);
    }
  return csvText(
    {
      header: ["session", "condition", "participant", "person", "name", "role", "scope", "start", "stop", "valence", "attention"],
      rows,
    },
    caption,
  );
}

function explanationOf({ pictures }: Study): string {
  const persons = pictures.sessions.flatMap((session) => session.persons);
  const curves = persons.some(({ valenceCurve }) => valenceCurve);
  const scopes = persons.some((person) => person.scopes);
  return (
    "Above: valence from −1 to 1 with a line at 0. Below: attention from 0 to 1. " +
    (curves ? `A curve has the means of ${pictures.stretches} equal parts of the session. ` : "") +
    (scopes ? "The results have no updates of these sessions, so a level line is the mean of each scope. " : "") +
    "There is no line where an estimate is unknown."
  );
}

function limitsOf({ pictures, limits, counts }: Study): string[] {
  const text = (count: number) => count.toLocaleString("en");
  const more = pictures.sessions.reduce((sum, { persons }) => sum + persons.reduce((all, { moreScopes }) => all + (moreScopes ?? 0), 0), 0);
  return [
    pictures.sessions.length < counts.sessions
      ? `The page lists the first ${text(pictures.sessions.length)} of ${counted(counts.sessions, "session")} by name. The comparisons have all complete ones.`
      : "",
    pictures.withoutPicture > 0
      ? `${counted(pictures.withoutPicture, "person")} of sessions have no picture: a page has ${text(limits.pictures)} at most, and ${limits.personsOfSession} of one session. The comparisons have those of complete sessions.`
      : "",
    more > 0 ? `${counted(more, "scope")} are not drawn: a picture has ${limits.scopesOfPicture} at most.` : "",
  ].filter((line) => line !== "");
}

function headingOf(condition: string, isOnly: boolean, sessions: Session[]): string {
  return `${condition || (isOnly ? "all" : "without condition")}: ${counted(sessions.length, "session")}`;
}

function legend(): HTMLElement {
  const items = quantities.map((quantity) => element("li", {}, lineSwatch(cssColor(quantity)), quantity));
  return element("ul", { class: "legend" }, ...items);
}

export function sessionsCard(study: Study): HTMLElement {
  const { sessions } = study.pictures;
  const conditions = [...new Set(sessions.map(({ condition }) => condition))].sort();
  const charts = new Map<HTMLElement, Drawn>();
  const blocks = conditions.map((condition) => {
    const some = sessions.filter((session) => session.condition === condition);
    const pictures = some.flatMap(picturesOf);
    const grid = element("div", { class: "chart sessions" }, ...pictures.map(({ session, person }) => figureFor(session, person)));
    charts.set(grid, new PaperGrid(pictures));
    return element("div", { class: "block" }, element("h3", {}, headingOf(condition, conditions.length === 1, some)), grid);
  });
  const isLong = sessions.length > mostWithoutBox;
  const box = element("div", isLong ? { class: "block boxed", tabindex: "0", role: "group", "aria-label": "Pictures of all sessions" } : { class: "block" }, ...blocks);
  const limits = limitsOf(study);
  const explanation = explanationOf(study);
  const caption = captionOf(study, explanation, ...limits);
  return figureCard(
    titleOf(study),
    { figure: "sessions", title: "all sessions", caption, legend, csv: () => csvOfPictures(study, caption) },
    charts,
    element("h2", {}, "Every session over time "),
    legend(),
    element("p", { class: "note" }, explanation),
    ...limits.map((line) => element("p", { class: "note limit" }, line)),
    box,
  );
}
