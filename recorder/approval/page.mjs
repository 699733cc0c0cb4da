// The owner's page: who asks for approval, who has it. Plain HTML without scripts; it reloads
// itself so that a request that was just made appears.

const kReloadSeconds = 5;

const escape = (text) =>
  String(text).replace(/[&<>"']/g, (character) => `&#${character.charCodeAt(0)};`);

export function renderPage(requests, approvals) {
  return `<!doctype html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta http-equiv="refresh" content="${kReloadSeconds}">
<title>Account approvals</title>
<style>${kStyle}</style>
</head>
<body>
<main>
<h1>Account approvals</h1>
<section aria-labelledby="requests">
<h2 id="requests">Waiting for your decision</h2>
${list(requests, requestItem, "No recorder is asking for approval.")}
</section>
<section aria-labelledby="approvals">
<h2 id="approvals">Approved recorders</h2>
${list(approvals, approvalItem, "No recorder has been approved yet.")}
</section>
</main>
</body>
</html>
`;
}

const list = (entries, item, none) =>
  entries.length === 0 ? `<p class="none">${none}</p>` : `<ul>${entries.map(item).join("")}</ul>`;

const requestItem = (request) => `<li>
<p class="code">${escape(request.userCode)}</p>
${recorderFacts(request)}
<p class="facts">Approve only if the recorder shows this very code. Recordings: ${escape(
  request.recordingAccess,
)}.</p>
${buttons(`/requests/${request.userCode}`, [
  ["approve", "Approve"],
  ["refuse", "Refuse"],
])}
</li>`;

const approvalItem = (approval) => `<li>
${recorderFacts(approval)}
<p class="facts">${leaseSentence(approval)}</p>
${buttons(`/approvals/${approval.peer}`, [
  ...(approval.revoked || approval.asksAgain ? [["reapprove", "Approve again"]] : []),
  ...(approval.revoked ? [] : [["revoke", "Revoke"]]),
])}
</li>`;

const recorderFacts = ({ name, server, installation }) => `<p class="name">${escape(name)}</p>
<p class="facts">${escape(server)}<br>Installation ${escape(installation)}</p>`;

function leaseSentence({ leaseExpiresAt, revoked, reapproved, asksAgain }) {
  if (reapproved) return "Approved again; takes effect when the recorder renews.";
  if (asksAgain) return "Asks to be approved again: its credential is no longer the current one.";
  if (revoked) return "Revoked.";
  const day = new Date(leaseExpiresAt).toISOString().slice(0, 16).replace("T", " ");
  return `Approved until ${day} UTC, unless renewed.`;
}

const buttons = (subject, verbs) =>
  `<div class="buttons">${verbs
    .map(([verb, label]) => button(`${subject}/${verb}`, label))
    .join("")}</div>`;

const button = (action, label) =>
  `<form method="post" action="${escape(action)}"><button>${label}</button></form>`;

const kStyle = `
:root { color-scheme: light dark; font: 16px/1.5 system-ui, sans-serif; }
body { margin: 0; }
main { max-width: 40rem; margin: 0 auto; padding: 1.5rem; }
h1 { font-size: 1.5rem; }
h2 { font-size: 1.1rem; margin-top: 2rem; }
ul { list-style: none; padding: 0; }
li { border: 1px solid GrayText; border-radius: 0.5rem; padding: 1rem; margin-bottom: 1rem; }
p { margin: 0 0 0.5rem; overflow-wrap: anywhere; }
.code { font: 600 1.75rem/1.2 ui-monospace, monospace; letter-spacing: 0.08em; }
.name { font-weight: 600; }
.buttons { display: flex; gap: 0.75rem; }
button { font: inherit; padding: 0.3rem 1.1rem; }
`;
