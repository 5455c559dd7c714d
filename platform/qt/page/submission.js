// Tells of the submissions of a document's forms. Takes the shared natives and the functions of encoding.js and
// referrer.js, evaluates to listen(agent, report): puts the listeners where they belong in the agent's document, again
// if need be. `report` is called, when a form is about to be sent, with
//   form     its number
//   url      where to, of a GET form without what is sent
//   post     whether it is posted
//   frame    name of the target, "" for the keywords
//   data     the posted bytes, one character for each
//   headers  lines ended by CR LF
//   image    the document with its forms, null when the page submits more often than anybody could
// A report may lead to nothing: page code that only collects a form's data looks the same from here.
(function ({ native, getter, method, after }, encoderFor, referrerOf) {
    const formMethod = getter(HTMLFormElement, 'method');
    const formAction = getter(HTMLFormElement, 'action');
    const formEnctype = getter(HTMLFormElement, 'enctype');
    const characterSet = getter(Document, 'characterSet');
    const find = method(Document, 'querySelector');

    const urlencoded = 'application/x-www-form-urlencoded';
    const multipart = 'multipart/form-data';
    const limits = { data: 4 << 20, imagesPerSecond: 5 };

    // What the submit button says stands before what the form says.
    function keyword(form, submitter, name, ofForm, values) {
        const own = submitter ? native.attribute(submitter, 'form' + name) : null;
        if (own === null)
            return ofForm(form);
        return values.includes(own.toLowerCase()) ? own.toLowerCase() : values[0];
    }

    function targetOf(document, form, submitter) {
        let target = submitter ? native.attribute(submitter, 'formtarget') : null;
        if (target === null)
            target = native.attribute(form, 'target');
        if (target === null) {
            const base = find(document, 'base[target]');
            target = base ? native.attribute(base, 'target') : '';
        }
        return target.startsWith('_') ? '' : target;
    }

    // Null where no server is asked.
    function addressOf(form, submitter) {
        const own = submitter && native.has(submitter, 'formaction');
        try {
            const url = new URL(own ? submitter.formAction : formAction(form));
            return /^(https?|file|data|blob):$/.test(url.protocol) ? url : null;
        } catch (error) {
            return null;
        }
    }

    function charsetOf(document, form) {
        for (const label of (native.attribute(form, 'accept-charset') || '').split(/[\s,]+/)) {
            try {
                return fitForForms(new TextDecoder(label).encoding);
            } catch (error) {
                // The next one may be known.
            }
        }
        return fitForForms(characterSet(document).toLowerCase());
    }
    function fitForForms(charset) {
        return charset.startsWith('utf-16') ? 'utf-8' : charset;
    }

    // How the form is sent as it stands now; null when no server is asked.
    function wayOf(agent, form, submitter) {
        const how = keyword(form, submitter, 'method', formMethod, ['get', 'post', 'dialog']);
        const url = addressOf(form, submitter);
        if (!url || how === 'dialog')
            return null;
        const post = how === 'post';
        const enctype = keyword(form, submitter, 'enctype', formEnctype, [urlencoded, multipart, 'text/plain']);
        const referrer = referrerOf(agent, form, url);
        if (!post)
            url.search = '';
        return {
            url: url.href, post, enctype, charset: charsetOf(agent.document, form),
            frame: targetOf(agent.document, form, submitter),
            headers: (post ? 'Content-Type: ' + enctype + '\r\n' : '') +
                (referrer ? 'Referer: ' + referrer + '\r\n' : ''),
        };
    }

    function writePair(name, value, enctype, encode) {
        const bytes = (text) => text.replace(/\r\n?|\n/g, '\r\n').replace(/[^\x00-\x7f]+/g, encode);
        if (enctype === 'text/plain')
            return bytes(name) + '=' + bytes(value) + '\r\n';
        const escaped = (text) => bytes(text).replace(/[^A-Za-z0-9*._ -]/g, (byte) =>
            '%' + byte.charCodeAt(0).toString(16).toUpperCase().padStart(2, '0')).replace(/ /g, '+');
        return escaped(name) + '=' + escaped(value);
    }

    // The body as it is sent; of a multipart form its texts as an ordinary form would send them. Null when it cannot
    // be told.
    function bodyOf(document, data, { enctype, charset }) {
        const encode = encoderFor(document)(charset);
        const pairs = [];
        let length = 0;
        for (const [name, value] of data.entries()) {
            if (enctype === multipart && typeof value !== 'string')
                continue;
            length += name.length + (value.length || 0);
            if (!encode || length > limits.data)
                return null;
            pairs.push(writePair(name, typeof value === 'string' ? value : value.name, enctype, encode));
        }
        const body = pairs.join(enctype === 'text/plain' ? '' : '&');
        return body.length > limits.data ? null : body;
    }

    function watch(agent, report) {
        const imagesTaken = [];
        function imageNow() {
            const now = performance.now();
            while (imagesTaken.length > 0 && imagesTaken[0] < now - 1000)
                imagesTaken.shift();
            if (imagesTaken.length >= limits.imagesPerSecond)
                return null;
            imagesTaken.push(now);
            return agent.image({ forms: true, passing: true });
        }

        // By form, what is to be reported; of one task only.
        const collected = new Map();

        function send(entry) {
            if (!entry || entry.sent)
                return;
            entry.sent = true;
            after(() => {
                if (collected.get(entry.form) === entry)
                    collected.delete(entry.form);
            });
            const { form, way, data } = entry;
            const body = way && way.post ? bodyOf(agent.document, data, way) : '';
            if (way && body !== null)
                report({
                    form: agent.number(form), url: way.url, post: way.post, frame: way.frame, data: body,
                    headers: way.headers, image: imageNow(),
                });
        }

        let submit = null;
        function submitting(event) {
            if (!event.isTrusted)
                return;
            const seen = { form: event.target, submitter: event.submitter, event };
            submit = seen;
            after(() => {
                if (submit === seen)
                    submit = null;
            });
        }

        // The user's submission follows its submit event directly. Page code may collect a form's data as often as it
        // likes before it sends the form: the last counts. When a form's navigation starts, the engine collects once
        // more, without the button and in UTF-8, and that is not what is sent.
        function collecting(event) {
            const form = event.target;
            const former = collected.get(form);
            if (!event.isTrusted || (former && former.follows))
                return;
            const follows = submit !== null && submit.form === form && submit.event.eventPhase === Event.NONE &&
                !submit.event.defaultPrevented;
            const submitter = follows ? submit.submitter : null;
            const entry = { form, follows, data: event.formData, way: wayOf(agent, form, submitter) };
            collected.set(form, entry);
            if (follows) {
                after(() => send(entry));
                hearLast(event.currentTarget);
                return;
            }
            queueMicrotask(() => {
                // Without a script of the page on the stack this comes before the event's next listener.
                if (event.eventPhase === Event.NONE)
                    send(collected.get(form));
                else if (former)
                    collected.set(form, former);
                else
                    collected.delete(form);
            });
        }

        // The page's own listeners may change the data; one that keeps the event from coming here delays the report.
        function handed(event) {
            const entry = collected.get(event.target);
            if (entry && entry.follows)
                send(entry);
        }
        function hearLast(root) {
            root.removeEventListener('formdata', handed);
            root.addEventListener('formdata', handed);
        }

        function listenIn(root) {
            root.addEventListener('submit', submitting, true);
            root.addEventListener('formdata', collecting, true);
        }

        // The events of a form in a shadow root do not leave it; what the user does there before does.
        function touched(event) {
            for (const node of event.composedPath()) {
                if (node instanceof ShadowRoot)
                    listenIn(node);
            }
        }

        return () => {
            listenIn(agent.view);
            agent.view.addEventListener('focusin', touched, true);
            agent.view.addEventListener('click', touched, true);
        };
    }

    const listeners = new WeakMap(); // by agent
    return (agent, report) => {
        if (!listeners.has(agent))
            listeners.set(agent, watch(agent, report));
        listeners.get(agent)();
    };
})
