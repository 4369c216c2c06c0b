// Requests of the page to the server. Each request has the token of the page's address.

const token = new URLSearchParams(location.search).get("token") ?? "";

/** Returns the address of something that the server has. */
export function addressOf(path: string): string {
  return `${path}?token=${encodeURIComponent(token)}`;
}

/** Returns the answer; an error says why the server gives no answer. */
async function asked(path: string, request?: RequestInit): Promise<Response> {
  const answer = await fetch(addressOf(path), request).catch(() => null);
  if (!answer) throw new Error("The session does not answer: has it ended?");
  if (!answer.ok) throw new Error((await answer.text()).trim() || `The session refuses this (${answer.status}).`);
  return answer;
}

/** Has something done. */
export async function order(what: object): Promise<void> {
  await asked("/order", { method: "POST", headers: { "Content-Type": "application/json" }, body: JSON.stringify(what) });
}

/** Saves something that the server makes, under that name. */
export async function save(path: string, name: string): Promise<void> {
  const bytes = await (await asked(path)).blob();
  const link = document.createElement("a");
  link.href = URL.createObjectURL(bytes);
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 60_000);
}
