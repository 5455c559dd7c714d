<!DOCTYPE html PUBLIC "-//W3C//DTD HTML 4.01 Transitional//EN">
<html>
<head>
<meta http-equiv="Content-Type" content="text/html; charset=utf-8">
<title>Copperfield: a new entry</title>
<style type="text/css">
body { font: 11px Verdana, sans-serif; margin: 0; background: #eee; }
#top { background: #7a1f1f; color: #fff; font-size: 20px; padding: 10px 14px; }
#side { float: left; width: 160px; padding: 10px; }
#main { margin-left: 190px; padding: 10px 14px; background: #fff; min-height: 320px; }
.box { border: 1px solid #ccc; margin-bottom: 8px; padding: 6px; background: #fafafa; }
</style>
</head>
<body>
<div id="top">Copperfield: a new entry</div>
<div id="side"></div>
<div id="main">
<p>One form for each program. Fields with a star are required.</p>
<form method="post" action="/authors/done.html">
<p><label>Title * <input type="text" name="title" required></label></p>
<p><label>Category <select name="category"><option>Utilities</option><option>Games</option><option>Education</option></select></label></p>
<p><label>Price <input type="text" name="price" value="0.00"></label></p>
<p><label>Your e-mail * <input type="email" name="mail"></label></p>
<p><label>Short description *<br><textarea name="short" rows="3" cols="60"></textarea></label></p>
<p><label><input type="checkbox" name="terms" value="1"> I am the author or act for the author</label></p>
<p><input type="submit" value="Send for review"></p>
</form>
</div>
</body>
</html>
