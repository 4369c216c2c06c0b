// Saves what a card shows as a file, for a paper or a table.

import { element } from "../shared/dom";

export type FileKind = "SVG" | "PNG" | "CSV";

/** Pixels of a PNG for each pixel of the page. */
const pngScale = 3;

/** Adds the buttons "Save SVG", "Save PNG", "Save CSV" to the card. */
export function addSaveButtons(card: HTMLElement, title: string, save: (kind: FileKind) => void): void {
  const buttons = (["SVG", "PNG", "CSV"] as const).map((kind) => {
    const button = element("button", { type: "button", "aria-label": `Save ${kind} of ${title}` }, `Save ${kind}`);
    button.addEventListener("click", () => save(kind));
    return button;
  });
  card.prepend(element("div", { class: "save" }, ...buttons));
}

function download(blob: Blob, name: string): void {
  const address = URL.createObjectURL(blob);
  const link = element("a", { href: address, download: name });
  document.body.append(link);
  link.click();
  link.remove();
  setTimeout(() => URL.revokeObjectURL(address), 10_000);
}

export function saveText(text: string, type: string, name: string): void {
  download(new Blob([text], { type }), name);
}

/** Saves the SVG as pixels. */
export function savePng(svg: string, name: string): void {
  const image = element("img", { src: `data:image/svg+xml;charset=utf-8,${encodeURIComponent(svg)}` });
  image.addEventListener("load", () => {
    const canvas = document.createElement("canvas");
    canvas.width = image.width * pngScale;
    canvas.height = image.height * pngScale;
    canvas.getContext("2d")?.drawImage(image, 0, 0, canvas.width, canvas.height);
    canvas.toBlob((blob) => blob && download(blob, name), "image/png");
  });
}

/** Returns a name that every file system takes. */
export function fileName(...parts: string[]): string {
  return parts.map((part) => part.replace(/[^\p{L}\p{N}._-]+/gu, "_")).join("-");
}
