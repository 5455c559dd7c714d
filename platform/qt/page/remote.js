// A document of a frame as the top frame knows it.
(function ({ Sender, Receiver }, config) {
    // What the top frame knows of a document in a frame.
    class Remote {
        // The document that introduces itself by a window message; null when the message is none of ours, or says
        // that it comes from elsewhere than it does: somebody else passes it on.
        static from({ source, origin, data, ports }) {
            if (!source || source === window || ports.length !== 1)
                return null;
            const up = new Receiver(config.up);
            const introduction = up.open(data);
            if (!introduction || introduction.origin !== origin)
                return null;
            return new Remote(source, introduction, ports[0], up);
        }

        constructor(view, { id, url, origin, error }, port, up) {
            Object.assign(this, { view, origin, id, port, up, url: '', complete: false, error: error === true });
            this.down = new Sender(config.down);
            this.readUrl(url);
            this.waiting = new Map();
            this.nextNumber = 1;
        }

        // Calls `heard` with what the document says.
        listen(heard) {
            this.port.onmessage = (message) => {
                const data = this.up.open(message.data);
                if (data)
                    heard(data);
            };
        }

        readUrl(url) {
            this.url = typeof url === 'string' ? url : '';
        }

        send(ask, value) {
            this.port.postMessage(this.down.seal({ id: this.id, ask, value }));
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
                this.port.postMessage(this.down.seal({ id: this.id, ask, number, value }));
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
