// The program's hand in every document. Runs in an isolated world of its own, in every frame, before the page's
// scripts; page code cannot reach anything of it. Evaluates to a function that takes the configuration:
//   token      random text of this run; tells our frames' messages to the top window from a page's
//   straggler  ms after DOMContentLoaded when a document without its load event counts as completed
//   answer     ms that a frame has for an answer
//
// Program to top frame: calls of the object that the isolated world's global holds under `kestrune`
//   image(id, parts, request)  image of a document as JSON; "" when it comes later by an event; "null" when gone
//   take(request)              the text that a "ready" event announced
//   apply(edits)               [{kind, document, element, text}, ...]
//   stop()                     the user stopped the load
// Top frame to program: events over the web channel, each a JSON object
//   {event: "begin", id, url, error}   a document has taken over the top window; error: the engine's own error page
//   {event: "frame"}                   a document has taken over a frame
//   {event: "complete", id, url}       a document has completed; frames before the document they lie in
//   {event: "image", request, text}    the late answer to image(), when it is short
//   {event: "ready", request}          the late answer is there to be taken
// Frame to top frame: one window message {token, id, url, error} that carries a port; everything else goes over the
// port, where page code cannot listen. The token never travels towards a frame.
//   {event: "complete", url}, {event: "gone"}, {answer: number, value}
// Top frame to frame, over the port: {ask: "image" | "apply" | "stop" | "ping", number, value}
//
// An image is {id, url, tags: [text], links: [[element, text]], forms: [form], inputs: [element], frames: [image]}.
// A form is {element, id, action, actionInput, elements}; an element {element, type, name, value, src, checked,
// options: [[element, text, value, selected]]}; what is empty or false is left out.
(function (config) {
    'use strict';

    const key = 'kestrune';
    // The engine runs scripts again in some documents.
    const before = globalThis[key];
    if (before && before.document === document && !before.adopted)
        return;

    // A page names its controls as it likes, and a form or document shows them under these names in place of its
    // own properties, in every world. The prototypes' getters cannot be hidden that way.
    function getter(type, name) {
        const get = Object.getOwnPropertyDescriptor(type.prototype, name).get;
        return (object) => Reflect.apply(get, object, []);
    }
    function method(type, name) {
        const call = type.prototype[name];
        return (object, ...rest) => Reflect.apply(call, object, rest);
    }
    const native = {
        root: getter(Document, 'documentElement'),
        links: getter(Document, 'links'),
        forms: getter(Document, 'forms'),
        readyState: getter(Document, 'readyState'),
        byTag: method(Document, 'getElementsByTagName'),
        elements: getter(HTMLFormElement, 'elements'),
        attribute: method(Element, 'getAttribute'),
        has: method(Element, 'hasAttribute'),
        localName: getter(Element, 'localName'),
        namespace: getter(Element, 'namespaceURI'),
        shadowRoot: getter(Element, 'shadowRoot'),
        innerHTML: getter(Element, 'innerHTML'),
        queryAll: method(Element, 'querySelectorAll'),
        queryAllInShadow: method(DocumentFragment, 'querySelectorAll'),
        innerHTMLInShadow: getter(ShadowRoot, 'innerHTML'),
        connected: getter(Node, 'isConnected'),
        owner: getter(Node, 'ownerDocument'),
        dispatch: method(EventTarget, 'dispatchEvent'),
        click: method(HTMLElement, 'click'),
    };

    const html = 'http://www.w3.org/1999/xhtml';
    // Types that only say what kind of text is wanted.
    const textTypes = new Set(['email', 'url', 'tel', 'number', 'search', 'date', 'datetime-local', 'month', 'week', 'time']);
    const limits = { elements: 200000, tags: 100000, frames: 200, depth: 20, text: 4 << 20, inline: 32768, images: 8 };

    function randomId() {
        const bytes = crypto.getRandomValues(new Uint8Array(16));
        return Array.from(bytes, (byte) => byte.toString(16).padStart(2, '0')).join('');
    }

    function text(value) {
        const whole = typeof value === 'string' ? value : '';
        return whole.length > limits.text ? whole.slice(0, limits.text) : whole;
    }

    function formTags(source) {
        const tags = [];
        const opening = /<form /gi;
        for (let hit = opening.exec(source); hit && tags.length < limits.tags; hit = opening.exec(source)) {
            const end = source.indexOf('>', hit.index + 1);
            if (end < 0)
                break;
            tags.push(text(source.slice(hit.index, end + 1)));
            opening.lastIndex = end + 1;
        }
        return tags;
    }

    // The document's source; open shadow roots stand in it as templates where the engine can write them so.
    function sourceOf(root) {
        if (typeof root.getInnerHTML === 'function')
            return root.getInnerHTML({ includeShadowRoots: true });
        return native.innerHTML(root);
    }

    function mayHaveShadowRoots(root, source) {
        if (typeof root.getInnerHTML === 'function')
            return /<template shadowroot/.test(source);
        return Array.prototype.some.call(native.queryAll(root, '*'), (element) => native.shadowRoot(element));
    }

    // Links, forms and inputs in document order, a shadow root's where its host stands.
    function walkShadows(root, found) {
        const all = root instanceof DocumentFragment ? native.queryAllInShadow(root, '*') : native.queryAll(root, '*');
        for (const element of all) {
            if (native.namespace(element) === html) {
                const name = native.localName(element);
                if (name === 'form')
                    found.forms.push(element);
                else if (name === 'input')
                    found.inputs.push(element);
                else if ((name === 'a' || name === 'area') && native.has(element, 'href'))
                    found.links.push(element);
            }
            const shadow = native.shadowRoot(element);
            if (shadow)
                walkShadows(shadow, found);
        }
        return found;
    }

    // One document and the elements of it that were shown to the program.
    class Agent {
        constructor(view) {
            this.view = view;
            this.document = view.document;
            this.id = randomId();
            this.complete = false;
            this.numbers = new WeakMap();
            this.elements = new Map();
            this.imageCount = 0;
            this.nextElement = 1;
        }

        get url() {
            return this.view.location.href;
        }

        image(parts) {
            const image = { id: this.id, url: this.url };
            const root = native.root(this.document);
            if (!root)
                return image;
            const source = sourceOf(root);
            image.tags = formTags(source);
            ++this.imageCount;
            const found = mayHaveShadowRoots(root, source)
                ? walkShadows(root, { links: [], forms: [], inputs: [] })
                : null;
            if (parts.links)
                image.links = this.showLinks(found ? found.links : native.links(this.document));
            if (parts.forms) {
                image.forms = Array.from(found ? found.forms : native.forms(this.document), (form) =>
                    this.showForm(form));
                const inputs = found ? found.inputs : native.byTag(this.document, 'INPUT');
                image.inputs = Array.from(inputs, (input) => this.showElement(input));
            }
            this.letGo();
            return image;
        }

        // Elements stay reachable for as long as the last few images that showed them, and no longer.
        letGo() {
            if (this.imageCount % limits.images !== 0)
                return;
            for (const [number, held] of this.elements) {
                if (held.image <= this.imageCount - limits.images)
                    this.elements.delete(number);
            }
        }

        number(element) {
            const known = this.numbers.get(element);
            const number = known === undefined ? this.nextElement++ : known;
            if (known === undefined)
                this.numbers.set(element, number);
            this.elements.set(number, { element, image: this.imageCount });
            return number;
        }

        showLinks(links) {
            const shown = [];
            for (const link of links) {
                if (shown.length >= limits.elements)
                    break;
                shown.push([this.number(link), text(link.innerText)]);
            }
            return shown;
        }

        showForm(form) {
            const shown = { element: this.number(form) };
            shown.id = text(native.attribute(form, 'id'));
            // Read as page code would read it: an input of that name hides the property.
            const action = form.action;
            if (typeof action === 'string') {
                shown.action = text(native.attribute(form, 'action'));
            } else {
                shown.action = '[object]';
                shown.actionInput = text(action.value);
            }
            shown.elements = Array.from(native.elements(form), (element) => this.showElement(element));
            return shown;
        }

        showElement(element) {
            const shown = { element: this.number(element) };
            const type = text(element.type);
            shown.type = native.localName(element) === 'input' && textTypes.has(type) ? 'text' : type;
            shown.name = text(element.name);
            const value = text(element.value);
            shown.value = type === 'textarea' ? value.replace(/\r\n?|\n/g, '\r\n') : value;
            if (type === 'image')
                shown.src = text(native.attribute(element, 'src'));
            if (element.checked === true)
                shown.checked = true;
            if (native.localName(element) === 'select')
                shown.options = Array.from(element.options, (option) =>
                    [this.number(option), text(option.text), text(option.value), option.selected === true]);
            return shown;
        }

        find(number) {
            const held = this.elements.get(number);
            if (!held || !native.connected(held.element) || native.owner(held.element) !== this.document)
                return null;
            return held.element;
        }

        apply(edit) {
            const element = this.find(edit.element);
            if (!element)
                return;
            const name = native.localName(element);
            if (edit.kind === 'click')
                native.click(element);
            else if (edit.kind === 'value' && (name === 'input' || name === 'textarea' || name === 'select'))
                this.write(element, () => { element.value = edit.text; });
            else if (edit.kind === 'check' && name === 'input')
                this.check(element);
            else if (edit.kind === 'select' && name === 'option')
                this.write(element.closest('select') || element, () => { element.selected = true; });
        }

        // Script frameworks hear of a check box by its click, so it is clicked; a page that undoes the click, and
        // a disabled box, get it written.
        check(element) {
            if (element.checked)
                return;
            native.click(element);
            if (!element.checked && native.connected(element))
                this.write(element, () => { element.checked = true; });
        }

        write(element, set) {
            set();
            for (const type of ['input', 'change'])
                native.dispatch(element, new Event(type, { bubbles: true, composed: type === 'input' }));
        }
    }

    // Runs a task after the handlers of the event that is being dispatched. Unlike a timer it is not slowed down
    // in a window that is not visible.
    function after(task) {
        const channel = new MessageChannel();
        channel.port1.onmessage = () => {
            channel.port1.close();
            task();
        };
        channel.port2.postMessage(null);
    }

    // Calls `completed` once, when the document counts as completed.
    function watch(agent, completed) {
        const complete = () => {
            if (agent.complete)
                return;
            agent.complete = true;
            completed();
        };
        const loaded = (event) => {
            if (event.isTrusted && event.target === document)
                after(complete);
        };
        const parsed = (event) => {
            if (event.isTrusted)
                setTimeout(complete, config.straggler);
        };
        const arm = () => {
            window.addEventListener('load', loaded, true);
            document.addEventListener('DOMContentLoaded', parsed, true);
        };
        arm();
        if (agent.complete)
            completed();
        else if (native.readyState(document) === 'complete')
            after(complete);
        return { arm, complete };
    }

    // document.open() takes every listener away; what it cannot take is an observer of the document's children.
    function keepArmed(arm) {
        new MutationObserver(arm).observe(document, { childList: true });
    }

    // The top frame may have come first.
    const agent = before && before.document === document ? before.agent : new Agent(window);
    const ours = { document, agent };
    Object.defineProperty(globalThis, key, { value: ours, configurable: true });
    const errorPage = location.protocol === 'chrome-error:';

    function serveFrame() {
        const { port1: port, port2 } = new MessageChannel();
        const watching = watch(agent, () => port.postMessage({ event: 'complete', url: agent.url }));
        const leave = (event) => {
            if (event.isTrusted)
                port.postMessage({ event: 'gone' });
        };
        const arm = () => {
            watching.arm();
            window.addEventListener('pagehide', leave, true);
        };
        arm();
        keepArmed(arm);
        const carryOut = (ask, value) => {
            if (ask === 'image')
                return agent.image(value);
            if (ask === 'apply')
                agent.apply(value);
            else if (ask === 'stop')
                watching.complete();
            return null;
        };
        port.onmessage = ({ data }) => {
            let value = null;
            try {
                value = carryOut(data.ask, data.value);
            } catch (error) {
                // Answered with nothing: the top frame need not wait for its clock.
            }
            if (data.number)
                port.postMessage({ answer: data.number, value });
        };
        window.top.postMessage({ token: config.token, id: agent.id, url: agent.url }, '*', [port2]);
    }

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

    function serveTop() {
        const remotes = new Map(); // by window
        const byId = new Map();
        const announced = new Set();
        const results = new Map();
        let messages = 0;

        // The wire form of a method call on the program's one channel object. Sent bare, without the channel's
        // opening handshake, so that it keeps its place before the navigations that the page starts.
        function tell(event) {
            qt.webChannelTransport.send(JSON.stringify({
                type: 6, object: key, method: 'post', args: [JSON.stringify(event)], id: ++messages,
            }));
        }

        function forget(remote) {
            if (remotes.get(remote.view) === remote)
                remotes.delete(remote.view);
            if (byId.get(remote.id) === remote)
                byId.delete(remote.id);
            remote.close();
        }

        // The engine runs no script in some empty or written documents. Those that may be reached are looked
        // after from here until a script of their own comes; an empty document that only waits for a frame's
        // first page is left alone.
        function adopt(view) {
            try {
                const its = view.document;
                if (view[key] && view[key].document === its)
                    return view[key].agent;
                const src = view.frameElement ? native.attribute(view.frameElement, 'src') || '' : '';
                if (view.location.href === 'about:blank' && !/^\s*($|about:|javascript:)/i.test(src))
                    return null;
                const agent = new Agent(view);
                agent.complete = native.readyState(its) === 'complete';
                Object.defineProperty(view, key, { value: { document: its, agent, adopted: true }, configurable: true });
                byId.set(agent.id, agent);
                return agent;
            } catch (error) {
                return null;
            }
        }

        function agentOf(view) {
            return view === window ? agent : remotes.get(view) || adopt(view);
        }

        function framesOf(view) {
            // Each look at a window's frames walks all of them.
            const count = Math.min(view.length, limits.frames);
            const frames = [];
            for (let i = 0; i < count; ++i)
                frames.push(view[i]);
            return frames;
        }

        // The frames below a window, the innermost first, in order.
        function below(view, depth = 0) {
            if (depth > limits.depth)
                return [];
            const views = framesOf(view).flatMap((frame) => [...below(frame, depth + 1), frame]);
            return views.length > limits.frames ? views.slice(0, limits.frames) : views;
        }

        function find(id) {
            if (agent.id === id)
                return agent;
            const known = byId.get(id);
            if (known && (known instanceof Remote || agentOf(known.view) === known))
                return known;
            return below(window).map(agentOf).find((other) => other && other.id === id) || null;
        }

        // After this every notice that the frames below have sent so far has arrived.
        function settle(view) {
            const asked = below(view).map((frame) => remotes.get(frame)).filter((remote) => remote && !remote.error);
            return Promise.all(asked.map((remote) => remote.ask('ping')));
        }

        let stoppedAt = -Infinity;

        // A frame's first message can still be under way when the document that it lies in completes.
        async function connected(view) {
            const end = performance.now() + config.answer / 8;
            while (performance.now() < end && below(view).some((frame) => !agentOf(frame)))
                await new Promise(after);
        }

        function raise(one) {
            if (announced.has(one.id) || one.error || agentOf(one.view) !== one)
                return;
            // A page that makes frames without end is not followed without end.
            if (one !== agent && announced.size >= limits.frames)
                return;
            announced.add(one.id);
            tell({ event: 'complete', id: one.id, url: one.url });
        }

        let announcing = Promise.resolve();
        function announce(one) {
            announcing = announcing.then(async () => {
                const inner = below(one.view);
                if (inner.length > 0) {
                    await connected(one.view);
                    await settle(one.view);
                }
                for (const frame of below(one.view)) {
                    const other = agentOf(frame);
                    if (other && other.complete)
                        raise(other);
                }
                raise(one);
            }).catch(() => raise(one));
        }

        async function gather(one, parts, depth = 0) {
            const frames = framesOf(one.view);
            const own = one instanceof Remote ? one.ask('image', parts) : one.image(parts);
            const inner = depth >= limits.depth ? [] : frames.map((frame) => {
                const other = agentOf(frame);
                return other && !other.error ? gather(other, parts, depth + 1) : null;
            });
            const [image, ...below] = await Promise.all([own, ...inner]);
            if (!image)
                return null;
            if (one instanceof Remote) {
                image.id = one.id;
                one.readUrl(image.url);
                image.url = one.url;
            }
            image.frames = below;
            return image;
        }

        function deliver(request, result) {
            if (result.length <= limits.inline) {
                tell({ event: 'image', request, text: result });
                return;
            }
            results.set(request, result);
            setTimeout(() => results.delete(request), 10 * config.answer);
            tell({ event: 'ready', request });
        }

        ours.image = (id, parts, request) => {
            const one = find(id);
            if (!one)
                return 'null';
            if (!(one instanceof Remote) && one.view.length === 0)
                return JSON.stringify(one.image(parts));
            gather(one, parts).then((image) => deliver(request, JSON.stringify(image)),
                () => deliver(request, 'null'));
            return '';
        };
        ours.take = (request) => {
            const result = results.get(request) || 'null';
            results.delete(request);
            return result;
        };
        ours.apply = (edits) => {
            for (const edit of edits) {
                const one = find(edit.document);
                if (one instanceof Remote) {
                    one.send('apply', edit);
                    continue;
                }
                try {
                    if (one)
                        one.apply(edit);
                } catch (error) {
                    // The rest of the edits stands on its own.
                }
            }
        };

        const watching = watch(agent, () => announce(agent));
        ours.stop = () => {
            stoppedAt = performance.now();
            for (const remote of remotes.values())
                remote.send('stop');
            watching.complete();
        };

        function fromFrame(remote, data) {
            if (data.answer) {
                remote.answered(data.answer, data.value);
            } else if (data.event === 'complete') {
                remote.readUrl(data.url);
                remote.complete = true;
                announce(remote);
            } else if (data.event === 'gone') {
                forget(remote);
            }
        }

        const hear = (event) => {
            if (event.ports.length !== 1)
                return;
            const data = event.data;
            if (typeof data !== 'object' || data === null || data.token !== config.token)
                return;
            event.stopImmediatePropagation();
            if (!event.source || event.source === window || remotes.size >= limits.frames)
                return;
            const before = remotes.get(event.source);
            if (before)
                forget(before);
            const remote = new Remote(event.source, event.origin, data.id, data.url, event.ports[0]);
            remote.error = data.error === true;
            remotes.set(event.source, remote);
            byId.set(remote.id, remote);
            remote.port.onmessage = (message) => fromFrame(remote, message.data);
            if (performance.now() - stoppedAt < config.answer)
                remote.send('stop');
            tell({ event: 'frame' });
        };
        const arm = () => {
            watching.arm();
            window.addEventListener('message', hear, true);
        };
        arm();
        keepArmed(arm);
        tell({ event: 'begin', id: agent.id, url: agent.url });
    }

    if (window !== window.top) {
        if (errorPage)
            window.top.postMessage({ token: config.token, id: agent.id, url: '', error: true }, '*',
                [new MessageChannel().port2]);
        else
            serveFrame();
    } else if (errorPage) {
        qt.webChannelTransport.send(JSON.stringify({
            type: 6, object: key, method: 'post', id: 1,
            args: [JSON.stringify({ event: 'begin', id: agent.id, url: '', error: true })],
        }));
    } else {
        serveTop();
    }
})
