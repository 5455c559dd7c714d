// What frames and the top frame tell each other, sealed. A window message, and with it the port that it carries, can
// fall into the hands of page code: one that takes our listeners away by document.open() and adds its own before ours
// are back. So whoever holds a port can carry our messages, but neither read nor make one. ChaCha20 and Poly1305 as
// RFC 8439 describes them; pages without TLS have no cryptography of the engine's.
(function () {
    const size = { prefix: 8, nonce: 12, tag: 16, key: 32 };

    function rotate(word, by) {
        return (word << by) | (word >>> (32 - by));
    }

    function quarter(x, a, b, c, d) {
        x[a] += x[b];
        x[d] = rotate(x[d] ^ x[a], 16);
        x[c] += x[d];
        x[b] = rotate(x[b] ^ x[c], 12);
        x[a] += x[b];
        x[d] = rotate(x[d] ^ x[a], 8);
        x[c] += x[d];
        x[b] = rotate(x[b] ^ x[c], 7);
    }

    function startingState(key, nonce) {
        const state = new Uint32Array(16);
        state.set([0x61707865, 0x3320646e, 0x79622d32, 0x6b206574]);
        state.set(new Uint32Array(key.slice().buffer), 4);
        state.set(new Uint32Array(nonce.slice().buffer), 13);
        return state;
    }

    function keyStream(state, count) {
        const stream = new Uint32Array(16 * count);
        for (let i = 0; i < count; ++i) {
            const x = state.slice();
            for (let round = 0; round < 10; ++round) {
                quarter(x, 0, 4, 8, 12);
                quarter(x, 1, 5, 9, 13);
                quarter(x, 2, 6, 10, 14);
                quarter(x, 3, 7, 11, 15);
                quarter(x, 0, 5, 10, 15);
                quarter(x, 1, 6, 11, 12);
                quarter(x, 2, 7, 8, 13);
                quarter(x, 3, 4, 9, 14);
            }
            for (let word = 0; word < 16; ++word)
                stream[16 * i + word] = x[word] + state[word];
            ++state[12];
        }
        return new Uint8Array(stream.buffer);
    }

    // Of whole blocks of 16 bytes, as 64-bit halves.
    function poly1305(key, halves) {
        const [r0, r1, s0, s1] = new BigUint64Array(key.slice().buffer);
        const r = (r0 | (r1 << 64n)) & 0x0ffffffc0ffffffc0ffffffc0fffffffn;
        const prime = (1n << 130n) - 5n;
        let sum = 0n;
        for (let i = 0; i < halves.length; i += 2)
            sum = ((sum + halves[i] + (halves[i + 1] << 64n) + (1n << 128n)) * r) % prime;
        return new Uint8Array(BigUint64Array.of(...[0n, 64n].map((half) =>
            BigInt.asUintN(64, (sum + s0 + (s1 << 64n)) >> half))).buffer);
    }

    function padded(length) {
        return Math.ceil(length / 16) * 16;
    }

    function tagOf(macKey, shown, hidden) {
        const all = new Uint8Array(padded(shown.length) + padded(hidden.length) + 16);
        all.set(shown);
        all.set(hidden, padded(shown.length));
        const lengths = BigUint64Array.of(BigInt(shown.length), BigInt(hidden.length));
        all.set(new Uint8Array(lengths.buffer), all.length - 16);
        return poly1305(macKey, new BigUint64Array(all.buffer));
    }

    // The bytes under the key stream, which is the same both ways, and the key of their tag.
    function turned(key, nonce, bytes) {
        const state = startingState(key, nonce);
        const macKey = keyStream(state, 1).slice(0, size.key);
        const stream = keyStream(state, Math.ceil(bytes.length / 64));
        return { macKey, other: bytes.map((byte, i) => byte ^ stream[i]) };
    }

    // `shown` is authenticated with the bytes, and not hidden.
    function seal(key, nonce, bytes, shown = new Uint8Array(0)) {
        const { macKey, other } = turned(key, nonce, bytes);
        return { hidden: other, tag: tagOf(macKey, shown, other) };
    }

    // Null when it was not sealed so.
    function unseal(key, nonce, { hidden, tag }, shown = new Uint8Array(0)) {
        const { macKey, other } = turned(key, nonce, hidden);
        const own = tagOf(macKey, shown, hidden);
        return tag.length === own.length && own.every((byte, i) => byte === tag[i]) ? other : null;
    }

    function nonceOf(prefix, number) {
        const nonce = new Uint8Array(size.nonce);
        nonce.set(prefix);
        new DataView(nonce.buffer).setUint32(size.prefix, number, true);
        return nonce;
    }

    function keyFrom(hex) {
        return Uint8Array.from(hex.match(/../g), (byte) => parseInt(byte, 16));
    }

    // One end of a connection, for what goes out. A message is the sender's random prefix, the tag, and what is hidden.
    class Sender {
        constructor(key) {
            Object.assign(this, { key: keyFrom(key), prefix: crypto.getRandomValues(new Uint8Array(size.prefix)), count: 0 });
        }

        seal(value) {
            const bytes = new TextEncoder().encode(JSON.stringify(value));
            const { hidden, tag } = seal(this.key, nonceOf(this.prefix, this.count++), bytes);
            const message = new Uint8Array(size.prefix + size.tag + hidden.length);
            message.set(this.prefix);
            message.set(tag, size.prefix);
            message.set(hidden, size.prefix + size.tag);
            return message;
        }
    }

    // For what comes in: from one sender, in its order, each message once.
    class Receiver {
        constructor(key) {
            Object.assign(this, { key: keyFrom(key), prefix: null, count: 0 });
        }

        // Undefined when the message is none of that sender's, or not its next.
        open(message) {
            if (!(message instanceof Uint8Array) || message.length < size.prefix + size.tag)
                return undefined;
            const prefix = message.slice(0, size.prefix);
            if (this.prefix && !this.prefix.every((byte, i) => byte === prefix[i]))
                return undefined;
            const tag = message.slice(size.prefix, size.prefix + size.tag);
            const bytes = unseal(this.key, nonceOf(prefix, this.count), { hidden: message.slice(size.prefix + size.tag), tag });
            if (!bytes)
                return undefined;
            this.prefix = prefix;
            ++this.count;
            return JSON.parse(new TextDecoder().decode(bytes));
        }
    }

    return { Sender, Receiver, seal, unseal };
})
