// The address that the engine gives a server as where a form's request comes from. Takes the shared natives, evaluates
// to a function of the agent, the form and the URL that it is sent to; "" where none is given.
(function ({ native, getter, method }) {
    const urlOf = getter(Document, 'URL');
    const findAll = method(Document, 'querySelectorAll');
    const longest = 4096;

    const policies = ['no-referrer', 'no-referrer-when-downgrade', 'origin', 'origin-when-cross-origin', 'same-origin',
        'strict-origin', 'strict-origin-when-cross-origin', 'unsafe-url'];
    const oldPolicies = { never: 'no-referrer', always: 'unsafe-url', default: 'strict-origin-when-cross-origin',
        'origin-when-crossorigin': 'origin-when-cross-origin' };

    // A policy that came in the page's headers cannot be seen from here.
    function policyOf(document, form) {
        // Older engines know no such attribute of a form.
        const rel = 'rel' in HTMLFormElement.prototype ? native.attribute(form, 'rel') || '' : '';
        if (/(^|\s)noreferrer(\s|$)/i.test(rel))
            return 'no-referrer';
        let policy = 'strict-origin-when-cross-origin';
        for (const meta of findAll(document, 'meta[name="referrer" i]')) {
            const content = (native.attribute(meta, 'content') || '').trim().toLowerCase();
            const named = oldPolicies[content] || content;
            if (policies.includes(named))
                policy = named;
        }
        return policy;
    }

    // A document written by a script has the address of its writer.
    function addressOf({ view, document }) {
        try {
            const own = urlOf(document);
            return new URL(/^about:/.test(own) ? view.parent.location.href : own);
        } catch (error) {
            return null;
        }
    }

    return (agent, form, to) => {
        const from = addressOf(agent);
        if (!from || !/^https?:$/.test(from.protocol))
            return '';
        const whole = from.origin + from.pathname + from.search;
        const origin = from.origin + '/';
        const full = whole.length > longest ? origin : whole;
        const same = from.origin === to.origin;
        const down = from.protocol === 'https:' && to.protocol !== 'https:';
        switch (policyOf(agent.document, form)) {
        case 'no-referrer': return '';
        case 'no-referrer-when-downgrade': return down ? '' : full;
        case 'origin': return origin;
        case 'origin-when-cross-origin': return same ? full : origin;
        case 'same-origin': return same ? full : '';
        case 'strict-origin': return down ? '' : origin;
        case 'unsafe-url': return full;
        default: return same ? full : down ? '' : origin;
        }
    };
})
