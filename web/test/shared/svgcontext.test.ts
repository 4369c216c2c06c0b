import { describe, expect, test } from "vitest";
import { drawnAsSvg, RecordedPath, SvgContext } from "../../shared/svgcontext";
import { fillOf } from "../../shared/theme";
import { logOf } from "../drawing";

/** Returns what the drawing wrote, without empty definitions. */
function drawn(draw: (context: SvgContext) => void): string {
  const context = new SvgContext(100, 50);
  draw(context);
  return context.content().replace("<defs></defs>", "").replace(/"(c|p)\d+"|#(c|p)\d+/g, (id) => id.replace(/\d+/, "N"));
}

const black = ' stroke="#000000" stroke-width="1" stroke-linejoin="miter" stroke-linecap="butt"';

describe("A path", () => {
  test("has the commands of SVG, with two decimals", () => {
    const path = new RecordedPath();
    path.moveTo(1, 2.345);
    path.lineTo(3, 4);
    path.bezierCurveTo(1, 2, 3, 4, 5, 6.666);
    path.rect(1, 2, 3, 4);
    path.arc(10, 20, 5);
    path.closePath();
    expect(path.data).toBe("M1 2.35L3 4C1 2 3 4 5 6.67M1 2h3v4h-3zM5 20a5 5 0 1 0 10 0a5 5 0 1 0 -10 0zz");
  });

  test("that begins with a line begins at its end", () => {
    const path = new RecordedPath();
    path.lineTo(3, 4);
    path.lineTo(5, 6);
    expect(path.data).toBe("M3 4L5 6");
  });

  test("can begin as a copy, and take in another path", () => {
    const path = new RecordedPath();
    path.moveTo(1, 2);
    const copy = new RecordedPath(path);
    copy.addPath(path);
    expect(copy.data).toBe("M1 2M1 2");
    expect(path.data).toBe("M1 2");
    expect(new RecordedPath().data).toBe("");
  });
});

describe("A context that writes SVG", () => {
  test("begins as a canvas does", () => {
    const context = new SvgContext(100, 50);
    expect(context.canvas).toEqual({ width: 100, height: 50 });
    expect(context.textBaseline).toBe("alphabetic");
    expect(context.textAlign).toBe("start");
    expect(context.font).toBe("10px sans-serif");
    expect(context.content()).toBe("<defs></defs>");
  });

  test("strokes its path with the style of its lines", () => {
    expect(
      drawn((context) => {
        context.moveTo(0, 0);
        context.lineTo(5, 5);
        context.stroke();
      }),
    ).toBe(`<path d="M0 0L5 5" fill="none"${black}/>`);
    expect(
      drawn((context) => {
        context.strokeStyle = 'a"b';
        context.lineWidth = 2.004;
        context.lineJoin = "round";
        context.lineCap = "square";
        context.globalAlpha = 0.5;
        context.setLineDash([3, 1.234]);
        context.rect(0, 0, 1, 1);
        context.stroke();
      }),
    ).toBe(
      '<path d="M0 0h1v1h-1z" fill="none" stroke="a&quot;b" stroke-opacity="0.5" stroke-width="2" stroke-linejoin="round" ' +
        'stroke-linecap="square" stroke-dasharray="3 1.23"/>',
    );
  });

  test("has no dashes after an empty list, or none", () => {
    for (const none of [[], undefined as unknown as number[]])
      expect(
        drawn((context) => {
          context.setLineDash([1]);
          context.setLineDash(none);
          context.rect(0, 0, 1, 1);
          context.stroke();
        }),
      ).toBe(`<path d="M0 0h1v1h-1z" fill="none"${black}/>`);
  });

  test("fills paths, rectangles and circles", () => {
    expect(
      drawn((context) => {
        context.fillStyle = "red";
        context.arc(1, 1, 1);
        context.fill();
        context.fillRect(1, 2, 3, 4);
      }),
    ).toBe(
      '<path d="M0 1a1 1 0 1 0 2 0a1 1 0 1 0 -2 0z" fill="red"/><path d="M1 2h3v4h-3z" fill="red"/>',
    );
  });

  test("strokes and fills a path that is given", () => {
    const path = new RecordedPath();
    path.rect(1, 1, 1, 1);
    expect(
      drawn((context) => {
        context.stroke(path);
        context.fill(path);
      }),
    ).toBe(`<path d="M1 1h1v1h-1z" fill="none"${black}/><path d="M1 1h1v1h-1z" fill="#000000"/>`);
  });

  test("begins a new path", () => {
    expect(
      drawn((context) => {
        context.rect(0, 0, 1, 1);
        context.beginPath();
        context.fill();
        context.stroke();
      }),
    ).toBe("");
  });

  test.each(["transparent", ""])("draws nothing in the colour '%s'", (color) => {
    expect(
      drawn((context) => {
        context.fillStyle = context.strokeStyle = color;
        context.rect(0, 0, 1, 1);
        context.fill();
        context.stroke();
        context.fillText("a", 0, 0);
      }),
    ).toBe("");
  });

  test("writes the opacity of a colour with eight digits on its own", () => {
    const filled = (color: string, alpha: number) =>
      drawn((context) => {
        context.fillStyle = color;
        context.globalAlpha = alpha;
        context.fillRect(0, 0, 1, 1);
      });
    expect(filled("#12aBcD80", 1)).toBe('<path d="M0 0h1v1h-1z" fill="#12aBcD" fill-opacity="0.5"/>');
    expect(filled("#12abcd80", 0.5)).toContain('fill="#12abcd" fill-opacity="0.25"');
    expect(filled("#12abcdff", 1)).toBe('<path d="M0 0h1v1h-1z" fill="#12abcd"/>');
    expect(filled("#12abcd", 1)).toContain('fill="#12abcd"/>');
    expect(filled("#12abcd801", 1)).toContain('fill="#12abcd801"/>');
    expect(filled("x#12abcd80", 1)).toContain('fill="x#12abcd80"/>');
  });

  test("moves and enlarges what is drawn", () => {
    const moved = (change: (context: SvgContext) => void) =>
      drawn((context) => {
        change(context);
        context.fillRect(0, 0, 1, 1);
      });
    const rectangle = '<path d="M0 0h1v1h-1z" fill="#000000"';
    expect(moved((context) => context.translate(3, 4))).toBe(`${rectangle} transform="translate(3 4)"/>`);
    expect(moved((context) => context.translate(3, 0))).toBe(`${rectangle} transform="translate(3 0)"/>`);
    expect(moved((context) => context.translate(0, 4))).toBe(`${rectangle} transform="translate(0 4)"/>`);
    expect(moved((context) => context.scale(2, 1))).toBe(`${rectangle} transform="matrix(2 0 0 1 0 0)"/>`);
    expect(moved((context) => context.scale(1, 3))).toBe(`${rectangle} transform="matrix(1 0 0 3 0 0)"/>`);
    expect(
      moved((context) => {
        context.translate(1, 2);
        context.scale(2, 4);
        context.translate(10, 20);
        context.scale(3, 5);
        context.rotate();
      }),
    ).toBe(`${rectangle} transform="matrix(6 0 0 20 21 82)"/>`);
  });

  test("keeps its state, and goes back to it", () => {
    const context = new SvgContext(1, 1);
    context.restore(); // nothing to go back to
    const state = {
      fillStyle: "red", strokeStyle: "blue", lineWidth: 2, lineJoin: "round", lineCap: "round", globalAlpha: 0.5,
      font: "12px serif", textAlign: "right", textBaseline: "top",
    };
    Object.assign(context, state);
    context.setLineDash([1]);
    context.translate(1, 2);
    context.scale(2, 2);
    const draw = () => {
      context.beginPath();
      context.rect(0, 0, 1, 1);
      context.stroke();
    };
    draw();
    const before = context.content();
    context.clearRect();
    context.save();
    Object.assign(context, {
      fillStyle: "", strokeStyle: "", lineWidth: 1, lineJoin: "", lineCap: "", globalAlpha: 1, font: "", textAlign: "", textBaseline: "",
    });
    context.setLineDash([]);
    context.translate(7, 7);
    context.scale(7, 7);
    context.rect(0, 0, 5, 5);
    context.clip();
    context.restore();
    expect(context).toMatchObject(state);
    draw();
    expect(context.content().replace(/<defs>.*<\/defs>/, "<defs></defs>")).toBe(before);
  });

  test("clips what comes later, and within a clip as well", () => {
    expect(
      drawn((context) => {
        context.translate(1, 1);
        context.rect(0, 0, 5, 5);
        context.clip();
        context.beginPath();
        context.rect(1, 1, 2, 2);
        context.clip();
        context.fill();
      }),
    ).toBe(
      '<defs><clipPath id="cN"><path d="M0 0h5v5h-5z" transform="translate(1 1)"/></clipPath>' +
        '<clipPath id="cN" clip-path="url(#cN)"><path d="M1 1h2v2h-2z" transform="translate(1 1)"/></clipPath></defs>' +
        '<g clip-path="url(#cN)"><path d="M1 1h2v2h-2z" fill="#000000" transform="translate(1 1)"/></g>',
    );
  });

  test("gives each clip its own name, and clips with a path that is given", () => {
    const context = new SvgContext(1, 1);
    const path = new RecordedPath();
    path.rect(0, 0, 9, 9);
    context.clip(path);
    context.clip(path);
    const [first, second] = [...context.content().matchAll(/id="c(\d+)"/g)].map((found) => Number(found[1]));
    expect(second).toBe(first + 1);
    expect(context.content()).toContain(`clip-path="url(#c${first})"><path d="M0 0h9v9h-9z"/>`);
  });

  test("forgets all that is cleared", () => {
    const context = new SvgContext(1, 1);
    const pattern = fillOf({ color: "red", hatch: "rows" });
    context.fillStyle = pattern;
    context.fillRect(0, 0, 1, 1);
    context.clearRect();
    expect(context.content()).toBe("<defs></defs>");
    context.fillRect(0, 0, 1, 1);
    expect(context.content()).toContain("<pattern");
  });

  test("writes texts, as texts", () => {
    expect(
      drawn((context) => {
        context.fillText('<a> & "b"', 1.234, 2);
      }),
    ).toBe('<text x="1.23" y="2" font-family="sans-serif" font-size="10" text-anchor="start" fill="#000000">&lt;a&gt; &amp; &quot;b&quot;</text>');
    expect(drawn((context) => context.fillText("", 0, 0))).toBe("");
  });

  test.each([
    ["center", "middle"],
    ["right", "end"],
    ["end", "end"],
    ["left", "start"],
    ["start", "start"],
  ])("aligns a text at the %s", (textAlign, anchor) => {
    expect(
      drawn((context) => {
        context.textAlign = textAlign;
        context.fillText("a", 0, 0);
      }),
    ).toContain(`text-anchor="${anchor}"`);
  });

  test.each([
    ["middle", 7],
    ["top", 16],
    ["bottom", -4],
    ["alphabetic", 0],
  ])("lowers a text whose baseline is %s", (baseline, y) => {
    expect(
      drawn((context) => {
        context.font = "20px serif";
        context.textBaseline = baseline;
        context.fillText("a", 0, 0);
      }),
    ).toContain(`y="${y}"`);
  });

  test.each([
    ["bold 12.5px a", 'font-family="a" font-size="12.5" font-weight="600"'],
    ["600 12px a", 'font-family="a" font-size="12" font-weight="600"'],
    ['12px "DejaVu Sans", serif', 'font-family="&quot;DejaVu Sans&quot;, serif" font-size="12" text'],
    ["nonsense", 'font-family="sans-serif" font-size="10" text'],
  ])("takes the font %s apart", (font, attributes) => {
    expect(
      drawn((context) => {
        context.font = font;
        context.fillText("a", 0, 0);
      }),
    ).toContain(attributes);
  });

  test("measures texts in their font", () => {
    const context = new SvgContext(0, 0);
    context.font = "20px serif";
    expect(context.measureText("abc").width).toBe(30);
  });

  test("fills with a pattern, which is defined once", () => {
    const rows = fillOf({ color: "red", hatch: "rows" });
    const columns = fillOf({ color: "red", hatch: "columns" });
    const written = drawn((context) => {
      context.globalAlpha = 0.5;
      for (const style of [rows, rows, columns]) {
        context.fillStyle = style;
        context.fillRect(0, 0, 1, 1);
      }
    });
    const tile = (line: string) =>
      '<pattern id="pN" width="12" height="12" patternUnits="userSpaceOnUse"><defs></defs><path d="M0 0h12v12h-12z" fill="red"/>' +
      `<path d="${line}" fill="none" stroke="color(--surface)" stroke-width="2.4" stroke-linejoin="miter" stroke-linecap="butt"/></pattern>`;
    const filled = '<path d="M0 0h1v1h-1z" fill="url(#pN)" fill-opacity="0.5"/>';
    // drawn() removes the first empty definitions that it finds, which are those of the first tile.
    expect(written).toBe(`<defs>${tile("M0 6L12 6").replace("<defs></defs>", "")}${tile("M6 0L6 12")}</defs>${filled.repeat(3)}`);
  });

  test("gives patterns different names, and uses them", () => {
    const context = new SvgContext(1, 1);
    for (const hatch of ["rows", "columns"] as const) {
      context.fillStyle = fillOf({ color: "red", hatch });
      context.fillRect(0, 0, 1, 1);
    }
    const defined = [...context.content().matchAll(/id="(p\d+)"/g)].map((found) => found[1]);
    const used = [...context.content().matchAll(/url\(#(p\d+)\)/g)].map((found) => found[1]);
    expect(new Set(defined).size).toBe(2);
    expect(used).toEqual(defined);
  });

  test("draws nothing with a pattern that is not ours", () => {
    expect(
      drawn((context) => {
        context.fillStyle = {} as CanvasPattern;
        context.fillRect(0, 0, 1, 1);
      }),
    ).toBe("");
  });
});

describe("A drawing for canvas", () => {
  test("is drawn in the context, and the next canvas has its own again", () => {
    const context = new SvgContext(1, 1);
    const { Path2D: path } = globalThis;
    const { getContext } = HTMLCanvasElement.prototype;
    const next = document.createElement("canvas");
    drawnAsSvg(context, () => {
      expect(document.createElement("canvas").getContext("2d")).toBe(context);
      expect(next.getContext("2d")).not.toBe(context);
      expect(new Path2D()).toBeInstanceOf(RecordedPath);
    });
    expect(globalThis.Path2D).toBe(path);
    expect(HTMLCanvasElement.prototype.getContext).toBe(getContext);
    expect(logOf(next)).toEqual([]);
  });

  test("leaves canvases as they were if it fails, or asks for no context", () => {
    const { Path2D: path } = globalThis;
    const { getContext } = HTMLCanvasElement.prototype;
    expect(() =>
      drawnAsSvg(new SvgContext(1, 1), () => {
        throw new Error("no");
      }),
    ).toThrow("no");
    expect(globalThis.Path2D).toBe(path);
    expect(HTMLCanvasElement.prototype.getContext).toBe(getContext);
  });
});
