<t:stylesheet version="1.0" xmlns:t="http://www.w3.org/1999/XSL/Transform">
  <t:output method="text"/>
  <t:template match="/"><t:value-of select="count(//book)"/></t:template>
</t:stylesheet>
