// Serves the top window's document, and gathers what the frames' documents say. `ours` is the object that the
// program calls; see script.js.
(function ({ native, limits, after }, { watch, keepArmed }, hearSubmissions, Agent, Remote, config) {
    const key = 'kestrune';

    function serveTop(agent, ours) {
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
                hearSubmissions(agent, (submission) => submitted(agent, submission));
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

        // Each document speaks for itself only.
        function submitted(one, { form, url, post, frame, data, headers, image }) {
            if (image)
                Object.assign(image, { id: one.id, url: one.url });
            tell({ event: 'submit', id: one.id, form, url, post, frame, data, headers, image });
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
                image.origin = one.origin;
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
            const unread = () => deliver(request, 'unreadable');
            gather(one, parts).then((image) =>
                image || agentOf(one.view) !== one ? deliver(request, JSON.stringify(image)) : unread()).catch(unread);
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

        // Follows the wish for a menu into the frame that it is meant for: its document, and the place in this window.
        async function menuIn(one, ask, point, depth = 0) {
            const place = one instanceof Remote ? await one.ask(ask, point) : one[ask](point);
            if (!place)
                return null;
            const { frame, x, y, element } = place;
            if (!frame)
                return { id: one.id, x, y, element };
            const inner = depth < limits.depth ? agentOf(one.view[frame.index]) : null;
            if (!inner || inner.error)
                return { id: one.id, x: frame.left, y: frame.top };
            const found = await menuIn(inner, ask, { x, y }, depth + 1);
            return found && {
                id: found.id, element: found.element,
                x: frame.left + found.x * frame.across, y: frame.top + found.y * frame.down,
            };
        }
        ours.menu = (point, request) => {
            const none = { id: '', x: 0, y: 0 };
            menuIn(agent, point ? 'pointAt' : 'focusPlace', point).catch(() => none).then((found) =>
                tell({ event: 'menu', request, ...(found || none) }));
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
            } else if (data.event === 'submit') {
                submitted(remote, data);
            } else if (data.event === 'gone') {
                forget(remote);
            }
        }

        const hear = (event) => {
            const remote = Remote.from(event);
            if (!remote)
                return;
            event.stopImmediatePropagation();
            // Somebody who passes on what a document of another window said is no second one of it.
            const known = byId.get(remote.id);
            if (remotes.size >= limits.frames || (known && known.view !== remote.view))
                return;
            const before = remotes.get(remote.view);
            if (before)
                forget(before);
            remotes.set(remote.view, remote);
            byId.set(remote.id, remote);
            remote.listen((data) => fromFrame(remote, data));
            if (performance.now() - stoppedAt < config.answer)
                remote.send('stop');
            tell({ event: 'frame' });
        };
        const arm = () => {
            watching.arm();
            hearSubmissions(agent, (submission) => submitted(agent, submission));
            window.addEventListener('message', hear, true);
        };
        arm();
        keepArmed(arm);
        tell({ event: 'begin', id: agent.id, url: agent.url });
    }

    return serveTop;
})
