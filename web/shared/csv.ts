// Tables of comma-separated values.

export type Cell = string | number | null;

export interface Table {
  header: string[];
  rows: Cell[][];
}

/** Returns the number with as few digits as single precision needs. */
function shortest(value: number): string {
  for (let digits = 6; digits <= 9; ++digits) {
    const text = String(Number(value.toPrecision(digits)));
    if (Math.fround(Number(text)) === value) return text;
  }
  return String(value);
}

function cell(value: Cell): string {
  if (value === null || (typeof value === "number" && Number.isNaN(value))) return "";
  const text = typeof value === "number" && Math.fround(value) === value ? shortest(value) : String(value);
  return /[",\n\r]/.test(text) ? `"${text.replace(/"/g, '""')}"` : text;
}

/** Returns the caption as comments, then the table. */
export function csvText({ header, rows }: Table, caption: string[]): string {
  const lines = [header, ...rows].map((row) => row.map(cell).join(","));
  return [...caption.map((line) => `# ${line.replace(/[\r\n]+/g, " ")}`), ...lines].join("\n") + "\n";
}
