// Saves the content of a card as a file, for a paper or a table.

import { element } from "./dom";

export type FileKind = "SVG" | "PNG" | "CSV";

/** Pixels of a PNG for each pixel of the page. */
const pngScale = 3;
/** Width or height of a PNG that browsers can still draw [px]. */
const mostPixels = 16000;

/** Adds the buttons "Save SVG", "Save PNG", "Save CSV" to the card, and shows there why a file cannot be saved. */
export function addSaveButtons(card: HTMLElement, title: string, save: (kind: FileKind) => void | Promise<void>): void {
  const complaint = element("p", { class: "note complaint", role: "alert" });
  const run = async (kind: FileKind) => {
    complaint.textContent = "";
    try {
      await save(kind);
    } catch (error) {
      complaint.textContent = error instanceof Error ? error.message : String(error);
    }
  };
  const buttons = (["SVG", "PNG", "CSV"] as const).map((kind) => {
    const button = element("button", { type: "button", "aria-label": `Save ${kind} of ${title}` }, `Save ${kind}`);
    button.addEventListener("click", () => void run(kind));
    return button;
  });
  card.prepend(element("div", { class: "save" }, ...buttons), complaint);
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

/** Returns the image once the browser has read it. */
function loaded(source: string): Promise<HTMLImageElement> {
  return new Promise((resolve, reject) => {
    const image = element("img", { src: source });
    image.addEventListener("load", () => resolve(image));
    image.addEventListener("error", () => reject(new Error("the browser cannot read the SVG")));
  });
}

function blobOf(canvas: HTMLCanvasElement): Promise<Blob> {
  return new Promise((resolve, reject) =>
    canvas.toBlob((blob) => (blob ? resolve(blob) : reject(new Error("the picture is too large for the browser"))), "image/png"),
  );
}

/** Saves the SVG as pixels. The promise is rejected, with a message for the page, if the browser cannot draw them. */
export async function savePng(svg: string, name: string): Promise<void> {
  try {
    const image = await loaded(`data:image/svg+xml;charset=utf-8,${encodeURIComponent(svg)}`);
    const canvas = document.createElement("canvas");
    const scale = Math.min(pngScale, mostPixels / Math.max(image.width, image.height));
    canvas.width = image.width * scale;
    canvas.height = image.height * scale;
    const context = canvas.getContext("2d");
    if (!context) throw new Error("The browser cannot draw it");
    context.drawImage(image, 0, 0, canvas.width, canvas.height);
    download(await blobOf(canvas), name);
  } catch (error) {
    throw new Error(`The PNG was not saved: ${error instanceof Error ? error.message : String(error)}. Save the SVG instead.`);
  }
}

/** Returns a name that every file system accepts. */
export function fileName(...parts: string[]): string {
  return parts.map((part) => part.replace(/[^\p{L}\p{N}._-]+/gu, "_")).join("-");
}
