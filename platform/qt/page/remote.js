// A document of a frame as the top frame knows it.
(function (config) {
    // What the top frame knows of a document in a frame.
    class Remote {
        constructor(view, origin, id, url, port) {
            Object.assign(this, { view, origin, id, port, url: '', complete: false });
            this.readUrl(url);
            this.waiting = new Map();
            this.nextNumber = 1;
        }

        // A document may only speak for its own origin.
        readUrl(url) {
            let origin = 'null';
            try {
                origin = new URL(url).origin;
            } catch (error) {
                return;
            }
            if (origin === this.origin || origin === 'null' || this.origin === 'null')
                this.url = url;
        }

        send(ask, value) {
            this.port.postMessage({ ask, value });
        }

        // Resolves to null when the answer does not come in time.
        ask(ask, value) {
            return new Promise((resolve) => {
                const number = this.nextNumber++;
                const done = (answer) => {
                    clearTimeout(timer);
                    this.waiting.delete(number);
                    resolve(answer);
                };
                const timer = setTimeout(() => done(null), config.answer);
                this.waiting.set(number, done);
                this.port.postMessage({ ask, number, value });
            });
        }

        answered(number, value) {
            const done = this.waiting.get(number);
            if (done)
                done(value);
        }

        close() {
            for (const done of [...this.waiting.values()])
                done(null);
            this.port.close();
        }
    }

    return Remote;
})
