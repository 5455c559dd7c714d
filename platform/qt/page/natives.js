// What the page side's other parts share: the engine's own functions, taken before any page code has run, the limits
// on what a page can make the program hold, and small helpers.
(function () {
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
        matches: method(Element, 'matches'),
        localName: getter(Element, 'localName'),
        namespace: getter(Element, 'namespaceURI'),
        shadowRoot: getter(Element, 'shadowRoot'),
        innerHTML: getter(Element, 'innerHTML'),
        queryAll: method(Element, 'querySelectorAll'),
        queryAllInShadow: method(DocumentFragment, 'querySelectorAll'),
        connected: getter(Node, 'isConnected'),
        owner: getter(Node, 'ownerDocument'),
        dispatch: method(EventTarget, 'dispatchEvent'),
        click: method(HTMLElement, 'click'),
        focus: method(HTMLElement, 'focus'),
        blur: method(HTMLElement, 'blur'),
        box: method(Element, 'getBoundingClientRect'),
        at: method(Document, 'elementFromPoint'),
        atInShadow: method(ShadowRoot, 'elementFromPoint'),
        active: getter(Document, 'activeElement'),
        activeInShadow: getter(ShadowRoot, 'activeElement'),
        byId: method(Document, 'getElementById'),
        byIdInShadow: method(DocumentFragment, 'getElementById'),
        host: getter(ShadowRoot, 'host'),
        nodeType: getter(Node, 'nodeType'),
        parent: getter(Node, 'parentNode'),
        previous: getter(Node, 'previousSibling'),
        next: getter(Node, 'nextSibling'),
        first: getter(Node, 'firstChild'),
        last: getter(Node, 'lastChild'),
        rootNode: method(Node, 'getRootNode'),
        data: getter(CharacterData, 'data'),
        control: getter(HTMLLabelElement, 'control'),
        inputType: getter(HTMLInputElement, 'type'),
    };

    const html = 'http://www.w3.org/1999/xhtml';
    // Types that only say what kind of text is wanted.
    const textTypes = new Set(['email', 'url', 'tel', 'number', 'search', 'date', 'datetime-local', 'month', 'week', 'time']);
    const limits = {
        elements: 200000, tags: 100000, frames: 200, depth: 20, text: 4 << 20, source: 32 << 20, inline: 32768, images: 8,
        // Characters of a label that the page names as such, and of one that is guessed from where it stands; nodes
        // that are looked at for one guess.
        label: 1000, guess: 200, look: 300,
    };

    function randomId() {
        const bytes = crypto.getRandomValues(new Uint8Array(16));
        return Array.from(bytes, (byte) => byte.toString(16).padStart(2, '0')).join('');
    }

    function text(value, longest = limits.text) {
        const whole = typeof value === 'string' ? value : '';
        return whole.length > longest ? whole.slice(0, longest) : whole;
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

    return { native, getter, method, html, textTypes, limits, randomId, text, after };
})
