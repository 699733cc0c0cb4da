// The recorder's pages as HTML. Names of files come from the disk, so every value is escaped.

const kStyle = `
  :root { color-scheme: light dark; --line: #8884; --soft: #8882; }
  body {
    font: 16px/1.5 system-ui, sans-serif;
    max-width: 46rem; margin: 2.5rem auto; padding: 0 1.25rem;
  }
  nav { display: flex; gap: 1.25rem; border-bottom: 1px solid var(--line); padding-bottom: .75rem; }
  nav a { color: inherit; text-decoration: none; opacity: .65; }
  nav a[aria-current] { opacity: 1; font-weight: 600; }
  h1 { font-size: 1.5rem; margin: 1.75rem 0 .75rem; }
  dl { display: grid; grid-template-columns: max-content 1fr; gap: .4rem 1.5rem; }
  dt { opacity: .65; } dd { margin: 0; }
  table { width: 100%; border-collapse: collapse; }
  th, td {
    text-align: left;
    padding: .45rem .75rem .45rem 0; border-bottom: 1px solid var(--line);
  }
  td:first-child { overflow-wrap: anywhere; }
  td:not(:first-child), th:not(:first-child) { white-space: nowrap; }
  .empty { background: var(--soft); border-radius: .5rem; padding: 1rem 1.25rem; }
`;

const kNavigation = [
  ["/dashboard", "Dashboard"],
  ["/recordings", "Recordings"],
  ["/shares", "Shared links"],
];

export function renderDashboard({ version, retentionDays, recordings }) {
  const newest = recordings.length > 0 ? escape(formatTime(recordings[0].modified)) : "none yet";
  return render(
    "Dashboard",
    `<dl>
      <dt>Version</dt><dd>${escape(version)}</dd>
      <dt>Recordings</dt><dd>${recordings.length}</dd>
      <dt>Newest</dt><dd>${newest}</dd>
      <dt>Kept for</dt><dd>${escape(retentionDays)} days</dd>
    </dl>`,
  );
}

export function renderRecordings(recordings) {
  if (recordings.length === 0) return render("Recordings", empty("Nothing recorded yet."));
  const rows = recordings.map(({ name, size, modified }) => {
    const cells = [escape(name), formatTime(modified), formatSize(size)];
    return `<tr>${cells.map((cell) => `<td>${cell}</td>`).join("")}</tr>`;
  });
  return render(
    "Recordings",
    `<table><thead><tr><th>Name</th><th>Recorded</th><th>Size</th></tr></thead>
    <tbody>${rows.join("\n")}</tbody></table>`,
  );
}

export function renderShares() {
  return render("Shared links", empty("No recordings are shared."));
}

function render(title, content) {
  const links = kNavigation.map(([target, label]) => {
    const current = label === title ? ' aria-current="page"' : "";
    return `<a href="${target}"${current}>${label}</a>`;
  });
  return `<!doctype html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>${title} - Home DVR</title>
<style>${kStyle}</style>
</head>
<body>
<nav>${links.join("")}</nav>
<main>
<h1>${title}</h1>
${content}
</main>
</body>
</html>
`;
}

const empty = (sentence) => `<p class="empty">${sentence}</p>`;

const formatTime = (time) => `${time.toISOString().slice(0, 16).replace("T", " ")} UTC`;

function formatSize(bytes) {
  const units = ["B", "kB", "MB", "GB", "TB"];
  const power = bytes === 0 ? 0 : Math.min(Math.floor(Math.log10(bytes) / 3), units.length - 1);
  const amount = bytes / 1000 ** power;
  return `${power === 0 ? amount : amount.toFixed(1)} ${units[power]}`;
}

function escape(value) {
  const entities = { "&": "&amp;", "<": "&lt;", ">": "&gt;", '"': "&quot;", "'": "&#39;" };
  return String(value).replace(/[&<>"']/g, (character) => entities[character]);
}
