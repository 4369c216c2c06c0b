// Loads scripts of the server.

/** Of a script that the server does not have. */
export const scriptIsMissing = "A script of the camera was not loaded: is the installation complete?";

export function loadScript(address: string): Promise<void> {
  return new Promise((loaded, failed) => {
    const script = document.createElement("script");
    script.src = address;
    script.onload = () => loaded();
    script.onerror = () => failed(new Error(scriptIsMissing));
    document.head.append(script);
  });
}
