// Numbers and names for people.

export function clock(seconds: number, decimals = 1): string {
  const scale = 10 ** decimals;
  const ticks = Math.round(Math.abs(seconds) * scale);
  const rest = ((ticks % (60 * scale)) / scale).toFixed(decimals);
  const minutes = Math.floor(ticks / (60 * scale));
  const padded = rest.padStart(decimals > 0 ? 3 + decimals : 2, "0");
  const sign = seconds < 0 ? "−" : "";
  if (minutes < 60) return `${sign}${minutes}:${padded}`;
  return `${sign}${Math.floor(minutes / 60)}:${String(minutes % 60).padStart(2, "0")}:${padded}`;
}

export function signed(value: number, decimals = 2): string {
  const text = Math.abs(value).toFixed(decimals);
  if (Number(text) === 0) return text;
  return (value < 0 ? "−" : "+") + text;
}

export function plain(value: number, decimals = 2): string {
  return value.toFixed(decimals).replace("-", "−");
}

/** Returns both numbers with as few decimals as they need to differ, at least three; null if they are equal. */
export function apart(
  left: number,
  right: number,
  text: (value: number, decimals: number) => string,
): [string, string] | null {
  for (let decimals = 3; decimals <= 7; ++decimals) {
    const texts: [string, string] = [text(left, decimals), text(right, decimals)];
    if (texts[0] !== texts[1]) return texts;
  }
  return null;
}

export function percent(share: number): string {
  if (share > 0 && share < 0.005) return "<1 %";
  if (share < 1 && share >= 0.995) return ">99 %";
  return `${Math.round(100 * share)} %`;
}

export function counted(count: number, noun: string): string {
  return `${count.toLocaleString("en")} ${noun}${count === 1 ? "" : "s"}`;
}

export function valenceWord(valence: number): string {
  const strength = Math.abs(valence);
  if (strength < 0.1) return "neutral";
  const degree = strength < 0.35 ? "slightly " : strength < 0.7 ? "" : "very ";
  return degree + (valence < 0 ? "negative" : "positive");
}

/** "LookingDownRight" is "down right"; left and right are the person's own. */
export function zoneWord(name: string): string {
  if (name === "Unknown") return "no zone";
  if (name === "LookingAtRobot") return "at the robot";
  return name
    .replace("Looking", "")
    .replace(/([a-z])([A-Z])/g, "$1 $2")
    .toLowerCase();
}

const arrows: Record<string, string> = {
  LookingAtRobot: "●",
  LookingUp: "↑",
  LookingUpRight: "↗",
  LookingRight: "→",
  LookingDownRight: "↘",
  LookingDown: "↓",
  LookingDownLeft: "↙",
  LookingLeft: "←",
  LookingUpLeft: "↖",
};

export function zoneArrow(name: string): string {
  return arrows[name] ?? "";
}
