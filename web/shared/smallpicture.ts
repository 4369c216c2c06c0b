// Small pictures of a quantity over a whole recording.

/** The means of equal stretches of time; null where no value is known. */
export type Curve = (number | null)[];

/** A rectangle in pixels. */
export interface Box {
  x: number;
  y: number;
  width: number;
  height: number;
}

export function svg<Tag extends keyof SVGElementTagNameMap>(
  tag: Tag,
  attributes: Record<string, string>,
  ...children: Node[]
): SVGElementTagNameMap[Tag] {
  const node = document.createElementNS("http://www.w3.org/2000/svg", tag);
  for (const [name, value] of Object.entries(attributes)) node.setAttribute(name, value);
  node.append(...children);
  return node;
}

/** Returns the height at which a value is drawn in the box, which goes from `least` to 1. */
export function heightOf(value: number, least: number, { y, height }: Box): number {
  return y + ((1 - value) / (1 - least)) * height;
}

/** Returns the path of a curve in the box, with a gap where no value is known. */
export function curvePath(curve: Curve, least: number, box: Box): string {
  let path = "";
  let isOpen = false;
  curve.forEach((value, i) => {
    if (value === null) {
      isOpen = false;
      return;
    }
    const x = box.x + ((i + 0.5) / curve.length) * box.width;
    path += `${isOpen ? "L" : "M"}${x.toFixed(1)} ${heightOf(value, least, box).toFixed(1)}`;
    if (!isOpen) path += "h0.01"; // so that a single point is visible
    isOpen = true;
  });
  return path;
}
