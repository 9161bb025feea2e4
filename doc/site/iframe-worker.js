// Browsers start no workers for pages that are opened from a folder, and the search of the site is
// one. There, a hidden frame runs it instead.
if (location.protocol === "file:") {
    window.Worker = class extends EventTarget {
        constructor(url) {
            super();
            const frame = document.createElement("iframe");
            frame.hidden = true;
            document.documentElement.append(frame);
            const inside = frame.contentWindow;
            inside.postMessage = data => this.dispatchEvent(new MessageEvent("message", { data }));
            const script = frame.contentDocument.createElement("script");
            script.src = new URL(url, location.href);
            this.started = new Promise(done => script.addEventListener("load", done));
            frame.contentDocument.body.append(script);
            this.inside = inside;
            this.frame = frame;
        }

        set onmessage(listener) { this.addEventListener("message", listener); }

        postMessage(data) {
            const event = new MessageEvent("message", { data });
            this.started.then(() => this.inside.dispatchEvent(event));
        }

        terminate() { this.frame.remove(); }
    };
}
